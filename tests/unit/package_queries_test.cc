// Queries of the records of packages and applications: the results, and the destruction of every record, the
// application's before the package's.
#include "morvath/package_queries.h"

#include <string_view>

#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kGetPackage = "pkgmgrinfo_pkginfo_get_pkginfo";
constexpr const char* kGetMainApp = "pkgmgrinfo_pkginfo_get_mainappid";
constexpr const char* kGetApp = "pkgmgrinfo_appinfo_get_appinfo";
constexpr const char* kGetPackageId = "pkgmgrinfo_appinfo_get_pkgid";

// A package whose main application and a second one have all data that can be queried.
Platform& PlatformWithViewer(std::string_view exec = "/opt/usr/globalapps/pkg/bin/App") {
  Platform& platform = doubles::Reset();
  Package package;
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

// A query of the main application's record: the function under test, and the platform's function that it calls.
struct LookUp {
  int (*function)(std::string& text);
  const char* asked;     // the library's function
  const char* question;  // that function's call

  // All steps of a query that gets this far.
  Steps Whole() const {
    return Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), Call(question),
                 ApplicationDestroyed(), PackageDestroyed()});
  }
};

const LookUp kName = {[](std::string& name) { return getExecName("pkg", name); }, "pkgmgrinfo_appinfo_get_exec",
                      "pkgmgrinfo_appinfo_get_exec()"};
const LookUp kValue = {[](std::string& value) { return getMetadataValue("pkg", "colour", value); },
                       "pkgmgrinfo_appinfo_get_metadata_value", "pkgmgrinfo_appinfo_get_metadata_value(colour)"};

void ExpectGivenBack(const Platform& platform) {
  EXPECT_TRUE(AllRecordsDestroyed(platform));
  EXPECT_TRUE(platform.misuses.empty());
}

// The package that owns an application.

const Steps kIdAsked = Join({Call(std::string(kGetPackageId) + "()"), ApplicationDestroyed()});

// The package that owns the application, and the steps after the application's record.
void ExpectOwner(
    const std::string& package, const std::string& application, const Steps& behind,
    const std::function<void(Platform&)>& prepare = [](Platform&) {}) {
  Platform& platform = PlatformWithViewer();
  prepare(platform);
  EXPECT_EQ(package, getPkgIdFromAppID(application));
  EXPECT_TRUE(Holds(platform, {ApplicationAsked(application), behind}));
  ExpectGivenBack(platform);
}

TEST(OwningPackage, every_application_of_a_package_is_owned_by_it) {
  for (const char* application : {"viewer", "other"}) ExpectOwner("pkg", application, kIdAsked);
}

TEST(OwningPackage, an_unknown_application_has_none_and_there_is_nothing_to_destroy) {
  for (const char* application : {"unknown", "pkg", ""}) ExpectOwner("", application, {});
}

TEST(OwningPackage, any_other_answer_than_0_gives_none_and_what_is_there_is_destroyed) {
  for (const int code : {-1, 1}) {
    ExpectOwner("", "viewer", {}, [=](Platform& platform) { platform.FailNext(kGetApp, code); });
    ExpectOwner("", "viewer", kIdAsked, [=](Platform& platform) { platform.FailNext(kGetPackageId, code); });
  }
}

TEST(OwningPackage, a_null_id_raises_and_the_record_is_destroyed) {
  Platform& platform = PlatformWithViewer();
  platform.GiveNullNext(kGetPackageId);
  EXPECT_TRUE(RaisesNullString([] { getPkgIdFromAppID("viewer"); }));
  EXPECT_TRUE(Holds(platform, {ApplicationAsked("viewer"), kIdAsked}));
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
    EXPECT_EQ(0, kName.function(name)) << path;
    EXPECT_EQ(expected, name) << path;
    EXPECT_TRUE(Holds(platform, kName.Whole()));
    ExpectGivenBack(platform);
  }
}

// Metadata of the main application.

TEST(MetadataValue, it_is_the_main_applications_value_for_the_key) {
  const std::pair<const char*, const char*> rows[] = {{"colour", "red"}, {"shape", "round"}, {"empty", ""}};
  for (const auto& [key, expected] : rows) {
    PlatformWithViewer();
    std::string value = "as it was";
    EXPECT_EQ(0, getMetadataValue("pkg", key, value)) << key;
    EXPECT_EQ(expected, value) << key;
  }
  const Platform& platform = PlatformWithViewer();
  std::string value;
  EXPECT_EQ(0, kValue.function(value));
  EXPECT_TRUE(Holds(platform, kValue.Whole()));
}

TEST(MetadataValue, an_absent_key_is_no_error_and_leaves_the_callers_value_alone) {
  for (const char* key : {"size", "Colour", "colour ", "", "pkg"}) {
    const Platform& platform = PlatformWithViewer();
    std::string value = "as it was";
    EXPECT_EQ(0, getMetadataValue("pkg", key, value)) << key;
    EXPECT_EQ("as it was", value) << key;
    ExpectGivenBack(platform);
  }
}

TEST(MetadataValue, any_other_answer_than_0_is_an_absent_key) {
  for (const int code : {-1, 1, -38}) {
    Platform& platform = PlatformWithViewer();
    platform.FailNext(kValue.asked, code);
    std::string value = "as it was";
    EXPECT_EQ(0, kValue.function(value));
    EXPECT_EQ("as it was", value);
    EXPECT_TRUE(Holds(platform, kValue.Whole()));
    ExpectGivenBack(platform);
  }
}

// What both queries of a main application have in common.

void ExpectNothingFound(const LookUp& look_up, const Steps& journal, const std::function<void(Platform&)>& prepare) {
  Platform& platform = PlatformWithViewer();
  prepare(platform);
  std::string text = "as it was";
  EXPECT_EQ(-1, look_up.function(text)) << look_up.asked;
  EXPECT_EQ("as it was", text) << look_up.asked;
  EXPECT_TRUE(Holds(platform, journal)) << look_up.asked;
  ExpectGivenBack(platform);
}

void ExpectBothFindNothing(const Steps& journal, const std::function<void(Platform&)>& prepare) {
  for (const LookUp& look_up : {kName, kValue}) ExpectNothingFound(look_up, journal, prepare);
}

const Steps kNoPackage = PackageAsked();
const Steps kNoMainApplication = Join({PackageAsked(), MainApplicationAsked(), PackageDestroyed()});
const Steps kNoApplication =
    Join({PackageAsked(), MainApplicationAsked(), ApplicationAsked("viewer"), PackageDestroyed()});

TEST(MainApplication, a_failure_leaves_the_callers_text_alone_and_every_record_is_destroyed) {
  const std::pair<const char*, Steps> failures[] = {
      {kGetPackage, kNoPackage}, {kGetMainApp, kNoMainApplication}, {kGetApp, kNoApplication}};
  for (const int code : {-1, 1}) {
    for (const auto& [function, journal] : failures) {
      ExpectBothFindNothing(journal, [&, name = function](Platform& platform) { platform.FailNext(name, code); });
    }
    ExpectNothingFound(kName, kName.Whole(), [&](Platform& platform) { platform.FailNext(kName.asked, code); });
  }
}

TEST(MainApplication, an_unknown_package_leaves_the_callers_text_alone) {
  const Platform& platform = PlatformWithViewer();
  std::string text = "as it was";
  for (const char* package : {"unknown", "viewer", ""}) {
    EXPECT_EQ(-1, getExecName(package, text)) << package;
    EXPECT_EQ(-1, getMetadataValue(package, "colour", text)) << package;
  }
  EXPECT_EQ("as it was", text);
  EXPECT_EQ(0, platform.Created(Record::Kind::kApplication) + platform.Created(Record::Kind::kPackage));
}

TEST(MainApplication, a_null_answer_raises_and_every_record_is_destroyed) {
  for (const LookUp& look_up : {kName, kValue}) {
    Platform& platform = PlatformWithViewer();
    platform.GiveNullNext(look_up.asked);
    std::string text = "as it was";
    EXPECT_TRUE(RaisesNullString([&] { look_up.function(text); }));
    EXPECT_EQ("as it was", text);
    EXPECT_TRUE(Holds(platform, look_up.Whole()));
    ExpectGivenBack(platform);
  }
}

// What happens with a null id is up to the platform.
TEST(MainApplication, a_package_without_one_has_neither_name_nor_value_and_its_record_is_destroyed) {
  ExpectBothFindNothing(kNoMainApplication, [](Platform& platform) { platform.packages.back().applications.clear(); });
  ExpectBothFindNothing(kNoMainApplication, [](Platform& platform) { platform.GiveNullNext(kGetMainApp); });
}

TEST(MainApplication, success_without_a_record_is_not_found_and_only_the_packages_record_is_destroyed) {
  ExpectBothFindNothing(kNoApplication, [](Platform& platform) { platform.GiveNullNext(kGetApp); });
}

}  // namespace
}  // namespace unit
