// Where a launcher tool runs, and where a package is installed.
#include "morvath/install_location.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/unit_case.h"

namespace {

using doubles::Call;
using doubles::Join;
using doubles::Platform;
using doubles::Source;
using doubles::Steps;
using support::TempDir;

constexpr const char* kInside = "This is the code running inside the VARK.\n";
constexpr const char* kOutside = "This is the code running outside the VARK.\n";
constexpr const char* kVariable = "VARK_CROSSGEN2_ENABLED";

const Source kGetPkgInfo("platform_utils", "pkgmgrGetPkgInfo");

Steps ReadWriteInstalled() { return Source("platform_utils", "isRWInstalledApp").Info("It is a RWInstalled App"); }

// The image-creation variable with a value, or without one, while this lives.
class ImageCreation {
 public:
  explicit ImageCreation(const char* value) {
    if (const char* before = std::getenv(kVariable)) before_ = before;
    Set(value);
  }
  ~ImageCreation() { Set(before_ ? before_->c_str() : nullptr); }
  ImageCreation(const ImageCreation&) = delete;
  ImageCreation& operator=(const ImageCreation&) = delete;

 private:
  static void Set(const char* value) {
    if (value == nullptr) {
      unsetenv(kVariable);
    } else {
      setenv(kVariable, value, 1);
    }
  }

  std::optional<std::string> before_;
};

// What `body` writes to standard output.
std::string PrintedBy(const std::function<void()>& body) {
  testing::internal::CaptureStdout();
  body();
  return testing::internal::GetCapturedStdout();
}

Platform& PlatformWith(std::string_view package_root) {
  Platform& platform = doubles::Reset();
  platform.packages.push_back(doubles::MakePackage("pkg", std::string(package_root)));
  return platform;
}

Platform& PlatformWithType(std::string_view type) {
  Platform& platform = PlatformWith("/pkg");
  platform.packages.front().type = type;
  return platform;
}

// Device roots, with the release marker and without.

TEST(ReleaseVersion, an_image_with_the_marker_is_a_release_and_nothing_is_logged) {
  const TempDir root;
  support::WriteFile(root.path() / "etc/release", "1.0\n");
  support::WithFixedPaths(root.path(), [] {
    const Platform& platform = doubles::Reset();
    EXPECT_TRUE(isReleaseVersion());
    EXPECT_TRUE(platform.journal.empty());
  });
}

TEST(ReleaseVersion, an_image_without_the_marker_is_none_and_nothing_is_logged) {
  const TempDir root;
  support::WriteFile(root.path() / "etc/release2");
  support::WithFixedPaths(root.path(), [] {
    const Platform& platform = doubles::Reset();
    EXPECT_FALSE(isReleaseVersion());
    EXPECT_TRUE(platform.journal.empty());
  });
}

TEST(ReleaseVersion, the_marker_only_has_to_exist) {
  const TempDir root;
  support::WriteFile(root.path() / "etc/release");
  std::filesystem::permissions(root.path() / "etc/release", std::filesystem::perms::none);
  support::WithFixedPaths(root.path(), [] {
    ASSERT_TRUE(support::GiveUpPrivileges());
    EXPECT_TRUE(isReleaseVersion());
  });
}

// The image-creation environment.

void ExpectEnvironment(const char* value, bool inside, const std::string& printed) {
  const ImageCreation environment(value);
  const Platform& platform = doubles::Reset();
  bool answer = !inside;
  EXPECT_EQ(printed, PrintedBy([&] { answer = isRunningInVARK(); }));
  EXPECT_EQ(inside, answer);
  EXPECT_TRUE(platform.journal.empty());
}

TEST(ImageCreationEnvironment, without_the_variable_the_answer_is_no_and_nothing_is_printed) {
  ExpectEnvironment(nullptr, false, "");
}

TEST(ImageCreationEnvironment, the_value_one_is_inside) { ExpectEnvironment("1", true, kInside); }

TEST(ImageCreationEnvironment, any_other_value_is_outside) {
  for (const char* value : {"", "0", "11", "1 ", " 1", "true", "01", "1\n", "2", "\x31\xC2\xA0"}) {
    SCOPED_TRACE(value);
    ExpectEnvironment(value, false, kOutside);
  }
}

TEST(ImageCreationEnvironment, every_call_repeats_the_line) {
  const ImageCreation environment("1");
  EXPECT_EQ(std::string(kInside) + kInside, PrintedBy([] {
              isRunningInVARK();
              isRunningInVARK();
            }));
}

TEST(ImageCreationEnvironment, the_environment_is_read_anew_on_every_call) {
  EXPECT_EQ(std::string(kInside) + kOutside, PrintedBy([] {
              {
                const ImageCreation environment("1");
                EXPECT_TRUE(isRunningInVARK());
              }
              {
                const ImageCreation environment("0");
                EXPECT_FALSE(isRunningInVARK());
              }
              const ImageCreation environment(nullptr);
              EXPECT_FALSE(isRunningInVARK());
            }));
}

TEST(ImageCreationEnvironment, the_line_keeps_its_place_among_what_else_is_printed) {
  const ImageCreation environment("1");
  EXPECT_EQ("before " + std::string(kInside) + "after", PrintedBy([] {
              std::fputs("before ", stdout);
              isRunningInVARK();
              std::fputs("after", stdout);
            }));
}

// The read-write area.

struct LocationRow {
  const char* what;
  std::string package_root;
  std::optional<std::string> area;
  bool inside;
};

const LocationRow kLocations[] = {
    {"in the area", "/opt/usr/globalapps/pkg", "/opt/usr/globalapps", true},
    {"the area itself", "/opt/usr/globalapps", "/opt/usr/globalapps", true},
    {"the area in the middle", "/mnt/opt/usr/globalapps/pkg", "/opt/usr/globalapps", true},
    {"the area at the end", "/mnt/opt/usr/globalapps", "/opt/usr/globalapps", true},
    {"a directory whose name goes on", "/opt/usr/globalapps2/pkg", "/opt/usr/globalapps", true},
    {"another area", "/home/apps/pkg", "/home/apps", true},
    {"elsewhere", "/usr/apps/pkg", "/opt/usr/globalapps", false},
    {"the area's own parent", "/opt/usr", "/opt/usr/globalapps", false},
    {"one byte short", "/opt/usr/globalapp/pkg", "/opt/usr/globalapps", false},
    {"another letter case", "/opt/usr/GlobalApps/pkg", "/opt/usr/globalapps", false},
    {"an area that ends in a slash", "/opt/usr/globalapps", "/opt/usr/globalapps/", false},
    {"no root path", "", "/opt/usr/globalapps", false},
    {"an empty area", "/usr/apps/pkg", "", true},
    {"an unknown area", "/usr/apps/pkg", std::nullopt, true},
};

TEST(ReadWriteInstalled, a_package_is_where_its_root_path_contains_the_area_anywhere_and_only_yes_is_logged) {
  for (const LocationRow& row : kLocations) {
    Platform& platform = PlatformWith(row.package_root);
    platform.read_write_root = row.area;
    EXPECT_EQ(row.inside, isRWInstalledApp("pkg")) << row.what;
    EXPECT_TRUE(Holds(platform, row.inside ? ReadWriteInstalled() : Steps{})) << row.what;
    EXPECT_TRUE(AllRecordsDestroyed(platform));
  }
}

TEST(ReadWriteInstalled, an_unknown_package_is_not_and_nothing_is_logged) {
  Platform& platform = PlatformWith("/opt/usr/globalapps/pkg");
  EXPECT_FALSE(isRWInstalledApp("unknown"));
  EXPECT_FALSE(isRWInstalledApp(""));
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(ReadWriteInstalled, the_root_path_is_asked_for_before_the_area) {
  Platform& platform = PlatformWith("/opt/usr/globalapps/pkg");
  EXPECT_TRUE(isRWInstalledApp("pkg"));
  EXPECT_TRUE(
      Holds(platform, {Call("pkgmgrinfo_pkginfo_get_pkginfo(pkg)"), Call("pkgmgrinfo_pkginfo_get_mainappid()"),
                       Call("pkgmgrinfo_appinfo_get_appinfo(pkg)"), Call("pkgmgrinfo_appinfo_get_root_path()"),
                       Call("pkgmgrinfo_appinfo_destroy_appinfo()"), Call("pkgmgrinfo_pkginfo_destroy_pkginfo()"),
                       Call("ovplatform_getenv(27)"), ReadWriteInstalled()}));
}

// What is skipped.

struct SkipRow {
  const char* environment;
  std::string package_root;
  bool skips_aot;
  bool skips_sac;
  std::string printed;  // by the question about ahead-of-time compilation
};

const SkipRow kSkips[] = {
    {nullptr, "/opt/usr/globalapps/pkg", false, false, ""},   {nullptr, "/usr/apps/pkg", true, true, ""},
    {"0", "/opt/usr/globalapps/pkg", false, false, kOutside}, {"0", "/usr/apps/pkg", true, true, kOutside},
    {"1", "/opt/usr/globalapps/pkg", true, false, kInside},   {"1", "/usr/apps/pkg", true, true, kInside},
};

TEST(Skipping, ahead_of_time_compilation_is_for_packages_in_the_area_and_never_inside_image_creation) {
  for (const SkipRow& row : kSkips) {
    const ImageCreation environment(row.environment);
    PlatformWith(row.package_root);
    bool skips = !row.skips_aot;
    EXPECT_EQ(row.printed, PrintedBy([&] { skips = IsNeedToSkipAOT("pkg"); }));
    EXPECT_EQ(row.skips_aot, skips) << row.package_root;
  }
}

TEST(Skipping, inside_image_creation_nothing_is_asked_about_the_package) {
  const ImageCreation environment("1");
  for (const char* package : {"pkg", "unknown", ""}) {
    const Platform& platform = PlatformWith("/opt/usr/globalapps/pkg");
    PrintedBy([&] { EXPECT_TRUE(IsNeedToSkipAOT(package)); });
    EXPECT_TRUE(platform.journal.empty());
  }
}

TEST(Skipping, outside_image_creation_the_install_location_decides_and_is_logged) {
  const ImageCreation environment(nullptr);
  Platform& inside = PlatformWith("/opt/usr/globalapps/pkg");
  EXPECT_FALSE(IsNeedToSkipAOT("pkg"));
  EXPECT_TRUE(Holds(inside, ReadWriteInstalled()));
  Platform& elsewhere = PlatformWith("/usr/apps/pkg");
  EXPECT_TRUE(IsNeedToSkipAOT("pkg"));
  EXPECT_TRUE(Holds(elsewhere, Steps{}));
  EXPECT_TRUE(IsNeedToSkipAOT("unknown"));
}

TEST(Skipping, the_shared_cache_depends_on_the_install_location_alone_and_the_environment_is_not_consulted) {
  for (const SkipRow& row : kSkips) {
    const ImageCreation environment(row.environment);
    Platform& platform = PlatformWith(row.package_root);
    bool skips = !row.skips_sac;
    EXPECT_EQ("", PrintedBy([&] { skips = IsNeedToSkipSAC("pkg"); }));
    EXPECT_EQ(row.skips_sac, skips) << row.package_root;
    EXPECT_TRUE(Holds(platform, row.skips_sac ? Steps{} : ReadWriteInstalled()));
  }
  EXPECT_TRUE(IsNeedToSkipSAC("unknown"));
}

// A package's record for the installer's user.

TEST(PackageRecord, the_record_for_the_installing_user_is_the_callers_to_destroy) {
  Platform& platform = PlatformWith("/pkg");
  platform.target_uid = 5001;
  pkgmgrinfo_pkginfo_h handle = nullptr;
  EXPECT_EQ(0, pkgmgrGetPkgInfo("pkg", &handle));
  EXPECT_TRUE(Holds(platform, {Call("pkgmgr_installer_info_get_target_uid()"),
                               Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(pkg, 5001)")}));
  EXPECT_EQ(1, platform.Alive(doubles::Record::Kind::kPackage));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(handle));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

TEST(PackageRecord, an_unknown_user_is_told_and_the_package_is_not_asked_for) {
  for (const int code : {-1, -38}) {
    Platform& platform = PlatformWith("/pkg");
    platform.FailNext("pkgmgr_installer_info_get_target_uid", code);
    int untouched = 0;
    pkgmgrinfo_pkginfo_h handle = &untouched;
    EXPECT_EQ(-1, pkgmgrGetPkgInfo("pkg", &handle));
    EXPECT_EQ(&untouched, handle);
    EXPECT_TRUE(
        Holds(platform, {Call("pkgmgr_installer_info_get_target_uid()"), kGetPkgInfo.Error("Failed to get UID")}));
  }
}

TEST(PackageRecord, only_a_negative_answer_about_the_user_is_a_failure_and_the_user_is_0_until_told_otherwise) {
  Platform& platform = PlatformWith("/pkg");
  platform.target_uid = 5001;
  platform.FailNext("pkgmgr_installer_info_get_target_uid", 1);
  pkgmgrinfo_pkginfo_h handle = nullptr;
  EXPECT_EQ(0, pkgmgrGetPkgInfo("pkg", &handle));
  EXPECT_TRUE(Holds(
      platform, {Call("pkgmgr_installer_info_get_target_uid()"), Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(pkg, 0)")}));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(handle));
}

TEST(PackageRecord, any_other_answer_than_0_about_the_package_is_a_failure_and_told_with_its_code) {
  for (const int code : {-1, 1, -38}) {
    Platform& platform = PlatformWith("/pkg");
    platform.FailNext("pkgmgrinfo_pkginfo_get_usr_pkginfo", code);
    int untouched = 0;
    pkgmgrinfo_pkginfo_h handle = &untouched;
    EXPECT_EQ(-1, pkgmgrGetPkgInfo("pkg", &handle));
    EXPECT_EQ(&untouched, handle);
    EXPECT_TRUE(Holds(
        platform, {Call("pkgmgr_installer_info_get_target_uid()"), Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(pkg, 0)"),
                   kGetPkgInfo.Error("Failed to get pkginfo (%d)", code)}));
    EXPECT_EQ(0, platform.Created(doubles::Record::Kind::kPackage));
  }
}

// The package type.

Steps TypeAsked() {
  return Join({Call("pkgmgr_installer_info_get_target_uid()"), Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(pkg, 0)"),
               Call("pkgmgrinfo_pkginfo_get_type()"), Call("pkgmgrinfo_pkginfo_destroy_pkginfo()")});
}

TEST(RpkType, the_first_three_characters_of_the_type_decide_and_the_record_is_destroyed) {
  const std::pair<const char*, bool> rows[] = {{"rpk", true},  {"rpkx", true},  {"rpk2", true},  {"rpk ", true},
                                               {"rp", false},  {"r", false},    {"", false},     {"rpx", false},
                                               {"xpk", false}, {"rxk", false},  {"RPK", false},  {"rpK", false},
                                               {"opk", false}, {"xrpk", false}, {" rpk", false}, {"rp k", false}};
  for (const auto& [type, is_rpk] : rows) {
    Platform& platform = PlatformWithType(type);
    EXPECT_EQ(is_rpk, isRPK("pkg")) << type;
    EXPECT_TRUE(Holds(platform, TypeAsked()));
    EXPECT_TRUE(AllRecordsDestroyed(platform));
    EXPECT_TRUE(platform.misuses.empty());
  }
}

TEST(RpkType, a_type_that_cannot_be_read_is_none_and_the_record_is_destroyed) {
  for (const int code : {-1, 1}) {
    Platform& platform = PlatformWithType("rpk");
    platform.FailNext("pkgmgrinfo_pkginfo_get_type", code);
    EXPECT_FALSE(isRPK("pkg"));
    EXPECT_TRUE(Holds(platform, TypeAsked()));
    EXPECT_TRUE(AllRecordsDestroyed(platform));
  }
}

TEST(RpkType, a_record_without_a_type_is_none_and_is_destroyed) {
  Platform& platform = PlatformWithType("rpk");
  platform.GiveNullNext("pkgmgrinfo_pkginfo_get_type");
  EXPECT_FALSE(isRPK("pkg"));
  EXPECT_TRUE(Holds(platform, TypeAsked()));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

TEST(RpkType, an_unknown_package_is_told_and_there_is_nothing_to_destroy) {
  Platform& platform = PlatformWithType("rpk");
  EXPECT_FALSE(isRPK("unknown"));
  EXPECT_TRUE(Holds(
      platform, {Call("pkgmgr_installer_info_get_target_uid()"), Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(unknown, 0)"),
                 kGetPkgInfo.Error("Failed to get pkginfo (%d)", -1)}));
}

TEST(RpkType, an_unknown_user_is_told_and_there_is_nothing_to_destroy) {
  Platform& platform = PlatformWithType("rpk");
  platform.FailNext("pkgmgr_installer_info_get_target_uid", -1);
  EXPECT_FALSE(isRPK("pkg"));
  EXPECT_TRUE(
      Holds(platform, {Call("pkgmgr_installer_info_get_target_uid()"), kGetPkgInfo.Error("Failed to get UID")}));
}

}  // namespace
