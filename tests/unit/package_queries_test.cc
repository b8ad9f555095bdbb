// Look-ups in the records of packages and applications: results, and every record given back, the application's
// before the package's.
#include "morvath/package_queries.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/unit_case.h"

namespace {

using doubles::Call;
using doubles::Join;
using doubles::Platform;
using doubles::Record;
using doubles::Steps;

constexpr const char* kGetPackage = "pkgmgrinfo_pkginfo_get_pkginfo";
constexpr const char* kGetMainApp = "pkgmgrinfo_pkginfo_get_mainappid";
constexpr const char* kGetApp = "pkgmgrinfo_appinfo_get_appinfo";
constexpr const char* kGetExec = "pkgmgrinfo_appinfo_get_exec";
constexpr const char* kGetPackageId = "pkgmgrinfo_appinfo_get_pkgid";
constexpr const char* kGetMetadata = "pkgmgrinfo_appinfo_get_metadata_value";

// A package whose main application and a second one have all that can be asked for.
Platform& PlatformWithViewer(std::string_view exec = "/opt/usr/globalapps/pkg/bin/App") {
  Platform& platform = doubles::Reset();
  doubles::Package package;
  package.id = "pkg";
  package.applications = {{"viewer", "/pkg", {{"colour", "red"}, {"empty", ""}, {"shape", "round"}}, std::string(exec)},
                          {"other", "/pkg", {{"colour", "blue"}, {"size", "7"}}, "/pkg/bin/Other"}};
  platform.packages = {doubles::MakePackage("first", "/first"), package};
  return platform;
}

Steps ApplicationAsked(const std::string& id) { return Call(std::string(kGetApp) + "(" + id + ")"); }
Steps ApplicationDestroyed() { return Call("pkgmgrinfo_appinfo_destroy_appinfo()"); }
Steps PackageAsked() { return Call(std::string(kGetPackage) + "(pkg)"); }
Steps MainApplicationAsked() { return Call(std::string(kGetMainApp) + "()"); }
Steps PackageDestroyed() { return Call("pkgmgrinfo_pkginfo_destroy_pkginfo()"); }

// Everything about a look-up in the main application's record, with `question` asked of it.
Steps WholeLookUp(const std::string& question) {
  return Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), Call(question),
               ApplicationDestroyed(), PackageDestroyed()});
}

void ExpectGivenBack(const Platform& platform) {
  EXPECT_TRUE(AllRecordsDestroyed(platform));
  EXPECT_TRUE(platform.misuses.empty());
}

// A call of the library that fails, and what is asked and destroyed then.
struct FailureRow {
  const char* function;
  Steps journal;
};

std::vector<FailureRow> FailuresBeforeTheQuestion() {
  return {{kGetPackage, PackageAsked()},
          {kGetMainApp, Join({PackageAsked(), MainApplicationAsked(), PackageDestroyed()})},
          {kGetApp, Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), PackageDestroyed()})}};
}

// The package that owns an application.

TEST(OwningPackage, every_application_of_a_package_is_owned_by_it) {
  for (const char* application : {"viewer", "other"}) {
    const Platform& platform = PlatformWithViewer();
    EXPECT_EQ("pkg", getPkgIdFromAppID(application));
    EXPECT_TRUE(Holds(
        platform, {ApplicationAsked(application), Call(std::string(kGetPackageId) + "()"), ApplicationDestroyed()}));
    ExpectGivenBack(platform);
  }
}

TEST(OwningPackage, an_unknown_application_has_none_and_there_is_nothing_to_destroy) {
  for (const char* application : {"unknown", "pkg", ""}) {
    const Platform& platform = PlatformWithViewer();
    EXPECT_EQ("", getPkgIdFromAppID(application));
    EXPECT_TRUE(Holds(platform, ApplicationAsked(application)));
  }
}

TEST(OwningPackage, any_other_answer_than_0_gives_none) {
  for (const int code : {-1, 1}) {
    Platform& platform = PlatformWithViewer();
    platform.FailNext(kGetApp, code);
    EXPECT_EQ("", getPkgIdFromAppID("viewer"));
    EXPECT_TRUE(Holds(platform, ApplicationAsked("viewer")));
  }
}

TEST(OwningPackage, an_id_that_cannot_be_read_is_none_and_the_record_is_destroyed) {
  for (const int code : {-1, 1}) {
    Platform& platform = PlatformWithViewer();
    platform.FailNext(kGetPackageId, code);
    EXPECT_EQ("", getPkgIdFromAppID("viewer"));
    EXPECT_TRUE(
        Holds(platform, {ApplicationAsked("viewer"), Call(std::string(kGetPackageId) + "()"), ApplicationDestroyed()}));
    ExpectGivenBack(platform);
  }
}

TEST(OwningPackage, a_null_id_raises_and_the_record_is_destroyed) {
  Platform& platform = PlatformWithViewer();
  platform.GiveNullNext(kGetPackageId);
  EXPECT_TRUE(RaisesNullString([] { getPkgIdFromAppID("viewer"); }));
  EXPECT_TRUE(
      Holds(platform, {ApplicationAsked("viewer"), Call(std::string(kGetPackageId) + "()"), ApplicationDestroyed()}));
  ExpectGivenBack(platform);
}

// The executable's name.

TEST(ExecutableName, it_is_what_follows_the_last_slash_of_the_main_applications_path) {
  const std::pair<const char*, const char*> rows[] = {{"/opt/usr/globalapps/pkg/bin/App", "App"},
                                                      {"App", "App"},
                                                      {"/App", "App"},
                                                      {"bin/App", "App"},
                                                      {"/pkg/bin/App.dll", "App.dll"},
                                                      {"/pkg//App", "App"},
                                                      {"/pkg/bin/", ""},
                                                      {"/", ""},
                                                      {"", ""},
                                                      {"C:\\App", "C:\\App"}};
  for (const auto& [path, expected] : rows) {
    const Platform& platform = PlatformWithViewer(path);
    std::string name = "as it was";
    EXPECT_EQ(0, getExecName("pkg", name)) << path;
    EXPECT_EQ(expected, name) << path;
    EXPECT_TRUE(Holds(platform, WholeLookUp(std::string(kGetExec) + "()")));
    ExpectGivenBack(platform);
  }
}

TEST(ExecutableName, a_failure_leaves_the_callers_name_alone_and_every_record_is_destroyed) {
  std::vector<FailureRow> rows = FailuresBeforeTheQuestion();
  rows.push_back({kGetExec, WholeLookUp(std::string(kGetExec) + "()")});
  for (const FailureRow& row : rows) {
    for (const int code : {-1, 1}) {
      Platform& platform = PlatformWithViewer();
      platform.FailNext(row.function, code);
      std::string name = "as it was";
      EXPECT_EQ(-1, getExecName("pkg", name)) << row.function;
      EXPECT_EQ("as it was", name) << row.function;
      EXPECT_TRUE(Holds(platform, row.journal)) << row.function;
      ExpectGivenBack(platform);
    }
  }
}

TEST(ExecutableName, an_unknown_package_leaves_the_callers_name_alone) {
  const Platform& platform = PlatformWithViewer();
  std::string name = "as it was";
  EXPECT_EQ(-1, getExecName("unknown", name));
  EXPECT_EQ(-1, getExecName("viewer", name));
  EXPECT_EQ(-1, getExecName("", name));
  EXPECT_EQ("as it was", name);
  EXPECT_EQ(0, platform.Created(Record::Kind::kApplication) + platform.Created(Record::Kind::kPackage));
}

TEST(ExecutableName, a_null_path_raises_and_every_record_is_destroyed) {
  Platform& platform = PlatformWithViewer();
  platform.GiveNullNext(kGetExec);
  std::string name = "as it was";
  EXPECT_TRUE(RaisesNullString([&] { getExecName("pkg", name); }));
  EXPECT_EQ("as it was", name);
  EXPECT_TRUE(Holds(platform, WholeLookUp(std::string(kGetExec) + "()")));
  ExpectGivenBack(platform);
}

// Metadata of the main application.

TEST(MetadataValue, it_is_the_main_applications_value_for_the_key) {
  const std::pair<const char*, const char*> rows[] = {{"colour", "red"}, {"shape", "round"}, {"empty", ""}};
  for (const auto& [key, expected] : rows) {
    const Platform& platform = PlatformWithViewer();
    std::string value = "as it was";
    EXPECT_EQ(0, getMetadataValue("pkg", key, value)) << key;
    EXPECT_EQ(expected, value) << key;
    EXPECT_TRUE(Holds(platform, WholeLookUp(std::string(kGetMetadata) + "(" + key + ")")));
    ExpectGivenBack(platform);
  }
}

TEST(MetadataValue, an_absent_key_is_no_error_and_leaves_the_callers_value_alone) {
  for (const char* key : {"size", "Colour", "colour ", "", "pkg"}) {
    const Platform& platform = PlatformWithViewer();
    std::string value = "as it was";
    EXPECT_EQ(0, getMetadataValue("pkg", key, value)) << key;
    EXPECT_EQ("as it was", value) << key;
    EXPECT_TRUE(Holds(platform, WholeLookUp(std::string(kGetMetadata) + "(" + key + ")")));
    ExpectGivenBack(platform);
  }
}

TEST(MetadataValue, any_other_answer_than_0_is_an_absent_key) {
  for (const int code : {-1, 1, -38}) {
    Platform& platform = PlatformWithViewer();
    platform.FailNext(kGetMetadata, code);
    std::string value = "as it was";
    EXPECT_EQ(0, getMetadataValue("pkg", "colour", value));
    EXPECT_EQ("as it was", value);
    ExpectGivenBack(platform);
  }
}

TEST(MetadataValue, a_failure_before_the_key_is_asked_for_leaves_the_callers_value_alone) {
  for (const FailureRow& row : FailuresBeforeTheQuestion()) {
    for (const int code : {-1, 1}) {
      Platform& platform = PlatformWithViewer();
      platform.FailNext(row.function, code);
      std::string value = "as it was";
      EXPECT_EQ(-1, getMetadataValue("pkg", "colour", value)) << row.function;
      EXPECT_EQ("as it was", value) << row.function;
      EXPECT_TRUE(Holds(platform, row.journal)) << row.function;
      ExpectGivenBack(platform);
    }
  }
}

TEST(MetadataValue, an_unknown_package_leaves_the_callers_value_alone) {
  const Platform& platform = PlatformWithViewer();
  std::string value = "as it was";
  EXPECT_EQ(-1, getMetadataValue("unknown", "colour", value));
  EXPECT_EQ(-1, getMetadataValue("colour", "pkg", value));
  EXPECT_EQ("as it was", value);
  EXPECT_EQ(0, platform.Created(Record::Kind::kApplication) + platform.Created(Record::Kind::kPackage));
}

TEST(MetadataValue, a_null_value_raises_and_every_record_is_destroyed) {
  Platform& platform = PlatformWithViewer();
  platform.GiveNullNext(kGetMetadata);
  std::string value = "as it was";
  EXPECT_TRUE(RaisesNullString([&] { getMetadataValue("pkg", "colour", value); }));
  EXPECT_EQ("as it was", value);
  EXPECT_TRUE(Holds(platform, WholeLookUp(std::string(kGetMetadata) + "(colour)")));
  ExpectGivenBack(platform);
}

// What both look-ups in a main application have in common.

void ExpectBothFindNothing(const Steps& journal, const std::function<void(Platform&)>& prepare) {
  std::string text = "as it was";
  Platform& for_name = PlatformWithViewer();
  prepare(for_name);
  EXPECT_EQ(-1, getExecName("pkg", text));
  EXPECT_TRUE(Holds(for_name, journal));
  ExpectGivenBack(for_name);
  Platform& for_value = PlatformWithViewer();
  prepare(for_value);
  EXPECT_EQ(-1, getMetadataValue("pkg", "colour", text));
  EXPECT_TRUE(Holds(for_value, journal));
  ExpectGivenBack(for_value);
  EXPECT_EQ("as it was", text);
}

TEST(MainApplication, one_whose_record_is_gone_is_not_found_and_the_packages_record_is_destroyed) {
  ExpectBothFindNothing(Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), PackageDestroyed()}),
                        [](Platform& platform) { platform.FailNext(kGetApp, -1); });
}

// What is asked with a null id, if anything is, is the platform's to refuse.
TEST(MainApplication, a_package_without_one_has_neither_name_nor_value_and_its_record_is_destroyed) {
  ExpectBothFindNothing(Join({PackageAsked(), MainApplicationAsked(), PackageDestroyed()}),
                        [](Platform& platform) { platform.packages.back().applications.clear(); });
  ExpectBothFindNothing(Join({PackageAsked(), MainApplicationAsked(), PackageDestroyed()}),
                        [](Platform& platform) { platform.GiveNullNext(kGetMainApp); });
}

TEST(MainApplication, success_without_a_record_is_not_found_and_only_the_packages_record_is_destroyed) {
  ExpectBothFindNothing(Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), PackageDestroyed()}),
                        [](Platform& platform) { platform.GiveNullNext(kGetApp); });
}

}  // namespace
