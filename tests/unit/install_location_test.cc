// In which environment a launcher tool runs, and where a package is installed.
#include "morvath/install_location.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kInside = "This is the code running inside the VARK.\n";
constexpr const char* kOutside = "This is the code running outside the VARK.\n";
constexpr const char* kVariable = "VARK_CROSSGEN2_ENABLED";

Steps ReadWriteInstalled() { return Source("platform_utils", "isRWInstalledApp").Info("It is a RWInstalled App"); }

// Sets the image-creation variable, or unsets it.
void SetImageCreation(const char* value) {
  if (value == nullptr) {
    unsetenv(kVariable);
  } else {
    setenv(kVariable, value, 1);
  }
}

// What `body` writes to standard output.
std::string PrintedBy(const std::function<void()>& body) {
  testing::internal::CaptureStdout();
  body();
  return testing::internal::GetCapturedStdout();
}

// Device roots, with the release marker and without.

TEST(ReleaseVersion, an_image_with_the_marker_is_a_release_and_nothing_is_logged) {
  const std::pair<const char*, bool> images[] = {{"etc/release", true}, {"etc/release2", false}};
  for (const auto& [file, is_release] : images) {
    const TempDir root;
    WriteFile(root.path() / file);
    std::filesystem::permissions(root.path() / file, std::filesystem::perms::none);  // the marker only has to exist
    support::WithFixedPaths(root.path(), [expected = is_release] {
      ASSERT_TRUE(support::GiveUpPrivileges());
      const Platform& platform = doubles::Reset();
      EXPECT_EQ(expected, isReleaseVersion());
      EXPECT_TRUE(platform.journal.empty());
    });
  }
}

// The image-creation environment.

void ExpectEnvironment(const char* value, bool inside, const std::string& printed) {
  SetImageCreation(value);
  const Platform& platform = doubles::Reset();
  bool answer = !inside;
  EXPECT_EQ(printed, PrintedBy([&] { answer = isRunningInVARK(); }));
  EXPECT_EQ(inside, answer);
  EXPECT_TRUE(platform.journal.empty());
}

TEST(ImageCreationEnvironment, the_value_one_is_inside_and_any_other_outside) {
  ExpectEnvironment("1", true, kInside);
  for (const char* value : {"", "0", "11", "1 ", " 1", "true", "01", "1\n", "2", "\x31\xC2\xA0"}) {
    SCOPED_TRACE(value);
    ExpectEnvironment(value, false, kOutside);
  }
}

TEST(ImageCreationEnvironment, without_the_variable_the_answer_is_no_and_nothing_is_printed) {
  ExpectEnvironment(nullptr, false, "");
}

TEST(ImageCreationEnvironment, every_call_reads_the_environment_anew_and_repeats_the_line) {
  EXPECT_EQ(std::string(kInside) + kInside + kOutside, PrintedBy([] {
              for (const char* value : {"1", "1", "0", static_cast<const char*>(nullptr)}) {
                SetImageCreation(value);
                EXPECT_EQ(value != nullptr && *value == '1', isRunningInVARK());
              }
            }));
}

TEST(ImageCreationEnvironment, the_line_keeps_its_place_among_what_else_is_printed) {
  SetImageCreation("1");
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
  std::string printed;  // by the query about ahead-of-time compilation
};

const SkipRow kSkips[] = {
    {nullptr, "/opt/usr/globalapps/pkg", false, false, ""},   {nullptr, "/usr/apps/pkg", true, true, ""},
    {"0", "/opt/usr/globalapps/pkg", false, false, kOutside}, {"0", "/usr/apps/pkg", true, true, kOutside},
    {"1", "/opt/usr/globalapps/pkg", true, false, kInside},   {"1", "/usr/apps/pkg", true, true, kInside},
};

TEST(Skipping, ahead_of_time_compilation_is_for_packages_in_the_area_and_never_inside_image_creation) {
  for (const SkipRow& row : kSkips) {
    SetImageCreation(row.environment);
    PlatformWith(row.package_root);
    bool skips = !row.skips_aot;
    EXPECT_EQ(row.printed, PrintedBy([&] { skips = IsNeedToSkipAOT("pkg"); }));
    EXPECT_EQ(row.skips_aot, skips) << row.package_root;
  }
}

TEST(Skipping, inside_image_creation_nothing_is_asked_about_the_package) {
  SetImageCreation("1");
  for (const char* package : {"pkg", "unknown", ""}) {
    const Platform& platform = PlatformWith("/opt/usr/globalapps/pkg");
    PrintedBy([&] { EXPECT_TRUE(IsNeedToSkipAOT(package)); });
    EXPECT_TRUE(platform.journal.empty());
  }
}

TEST(Skipping, outside_image_creation_the_install_location_decides_and_is_logged) {
  SetImageCreation(nullptr);
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
    SetImageCreation(row.environment);
    Platform& platform = PlatformWith(row.package_root);
    bool skips = !row.skips_sac;
    EXPECT_EQ("", PrintedBy([&] { skips = IsNeedToSkipSAC("pkg"); }));
    EXPECT_EQ(row.skips_sac, skips) << row.package_root;
    EXPECT_TRUE(Holds(platform, row.skips_sac ? Steps{} : ReadWriteInstalled()));
  }
  EXPECT_TRUE(IsNeedToSkipSAC("unknown"));
}

}  // namespace
}  // namespace unit
