// A package's record for the installer's user, and the package type in it.
#include <string_view>

#include "morvath/install_location.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

const Source kGetPkgInfo("platform_utils", "pkgmgrGetPkgInfo");

Platform& PlatformWithType(std::string_view type = "opk") {
  Platform& platform = PlatformWith("/pkg");
  platform.packages.front().type = type;
  return platform;
}

Steps UserAsked() { return Call("pkgmgr_installer_info_get_target_uid()"); }
Steps PackageAsked(const std::string& package_and_user = "pkg, 0") {
  return Join({UserAsked(), Call("pkgmgrinfo_pkginfo_get_usr_pkginfo(" + package_and_user + ")")});
}

// While the function returns this code, there is neither a record nor a type, and the journal has these steps.
void ExpectNothing(const char* function, int code, const Steps& journal) {
  Platform& platform = PlatformWithType("rpk");
  platform.FailNext(function, code);
  int untouched = 0;
  pkgmgrinfo_pkginfo_h handle = &untouched;
  EXPECT_EQ(-1, pkgmgrGetPkgInfo("pkg", &handle));
  EXPECT_EQ(&untouched, handle);
  platform.FailNext(function, code);
  EXPECT_FALSE(isRPK("pkg"));
  EXPECT_TRUE(Holds(platform, {journal, journal}));
  EXPECT_EQ(0, platform.Created(Record::Kind::kPackage));
}

TEST(PackageRecord, the_record_for_the_installing_user_is_the_callers_to_destroy) {
  Platform& platform = PlatformWithType();
  platform.target_uid = 5001;
  pkgmgrinfo_pkginfo_h handle = nullptr;
  EXPECT_EQ(0, pkgmgrGetPkgInfo("pkg", &handle));
  EXPECT_TRUE(Holds(platform, PackageAsked("pkg, 5001")));
  EXPECT_EQ(1, platform.Alive(Record::Kind::kPackage));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(handle));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

TEST(PackageRecord, an_unknown_user_is_told_and_the_package_is_not_asked_for) {
  for (const int code : {-1, -38}) {
    ExpectNothing("pkgmgr_installer_info_get_target_uid", code,
                  Join({UserAsked(), kGetPkgInfo.Error("Failed to get UID")}));
  }
}

TEST(PackageRecord, only_a_negative_answer_about_the_user_is_a_failure_and_the_user_is_0_until_told_otherwise) {
  Platform& platform = PlatformWithType();
  platform.target_uid = 5001;
  platform.FailNext("pkgmgr_installer_info_get_target_uid", 1);
  pkgmgrinfo_pkginfo_h handle = nullptr;
  EXPECT_EQ(0, pkgmgrGetPkgInfo("pkg", &handle));
  EXPECT_TRUE(Holds(platform, PackageAsked()));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(handle));
}

TEST(PackageRecord, any_other_answer_than_0_about_the_package_is_a_failure_and_told_with_its_code) {
  for (const int code : {-1, 1, -38}) {
    ExpectNothing("pkgmgrinfo_pkginfo_get_usr_pkginfo", code,
                  Join({PackageAsked(), kGetPkgInfo.Error("Failed to get pkginfo (%d)", code)}));
  }
}

// The package type.

Steps TypeAsked() {
  return Join({PackageAsked(), Call("pkgmgrinfo_pkginfo_get_type()"), Call("pkgmgrinfo_pkginfo_destroy_pkginfo()")});
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
  const std::function<void(Platform&)> faults[] = {
      [](Platform& platform) { platform.FailNext("pkgmgrinfo_pkginfo_get_type", -1); },
      [](Platform& platform) { platform.FailNext("pkgmgrinfo_pkginfo_get_type", 1); },
      [](Platform& platform) { platform.GiveNullNext("pkgmgrinfo_pkginfo_get_type"); }};
  for (const auto& put : faults) {
    Platform& platform = PlatformWithType("rpk");
    put(platform);
    EXPECT_FALSE(isRPK("pkg"));
    EXPECT_TRUE(Holds(platform, TypeAsked()));
    EXPECT_TRUE(AllRecordsDestroyed(platform));
  }
}

TEST(RpkType, an_unknown_package_is_told_and_there_is_nothing_to_destroy) {
  Platform& platform = PlatformWithType("rpk");
  EXPECT_FALSE(isRPK("unknown"));
  EXPECT_TRUE(Holds(platform, {PackageAsked("unknown, 0"), kGetPkgInfo.Error("Failed to get pkginfo (%d)", -1)}));
}

}  // namespace
}  // namespace unit
