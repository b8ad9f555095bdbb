// The search for CoBA applications and the catalogue that it fills.
#include <algorithm>

#include "plugin/catalogues.h"
#include "tests/unit/allocation_limit.h"
#include "tests/unit/pass_case.h"

namespace unit {
namespace {

DEVICE_TEST(CobaSearch, coba_applications_are_catalogued_and_the_filter_is_left) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  platform.packages.push_back(CobaPackage("one", "/opt/usr/apps/one"));
  platform.packages.push_back(CobaPackage("without.directory", "/opt/usr/apps/none"));
  platform.packages.push_back(CobaPackage("two", "/opt/usr/apps/two"));
  platform.packages.push_back(CobaPackage("switched.off", "/opt/usr/apps/off"));
  platform.packages.back().applications[0].metadata[0].value = "false";
  WriteFiles({"/opt/usr/apps/one/shared/res/C.dll", "/opt/usr/apps/one/shared/res/sub/Deep.dll",
              "/opt/usr/apps/one/lib/Other.dll", "/opt/usr/apps/two/shared/res/C.dll",
              "/opt/usr/apps/two/shared/res/E.dll", "/opt/usr/apps/off/shared/res/F.dll"});
  EXPECT_EQ(0, gac("pkg"));
  EXPECT_EQ(
      (Catalogue{{"C.dll", "/opt/usr/apps/one/shared/res/C.dll"}, {"E.dll", "/opt/usr/apps/two/shared/res/E.dll"}}),
      coBA);
  EXPECT_EQ((std::vector<std::string>{"pkgmgrinfo_appinfo_metadata_filter_create()",
                                      "pkgmgrinfo_appinfo_metadata_filter_add(" + std::string(kCobaKey) + ", true)",
                                      "pkgmgrinfo_appinfo_metadata_filter_foreach(no user data)"}),
            platform.Calls("pkgmgrinfo_appinfo_metadata_filter"));
  EXPECT_EQ(1, platform.Alive(Record::Kind::kFilter));
  EXPECT_EQ(1, platform.Alive());
  const std::vector<std::string> messages = platform.Messages();
  EXPECT_EQ(1, std::count(messages.begin(), messages.end(), "Path : /opt/usr/apps/one"));
  EXPECT_EQ(1, std::count(messages.begin(), messages.end(), "Path : /opt/usr/apps/none"));
  EXPECT_EQ(0, std::count(messages.begin(), messages.end(), "Path : /opt/usr/apps/off"));
}

DEVICE_TEST(CobaSearch, the_search_for_coba_applications_is_framed) {
  platform.packages.push_back(CobaPackage("one", "/opt/usr/apps/one"));
  getPackageByMetadataTag(cobaCallback, kCobaKey);
  EXPECT_TRUE(Holds(platform, {TracedPlugin(kSearch, Plugin("cobaCallback").Debug("Path : %s", "/opt/usr/apps/one"))}));
}

std::vector<std::string> callback_seen;
int NoteApplication(pkgmgrinfo_appinfo_h handle, void* user_data) {
  char* root = nullptr;
  pkgmgrinfo_appinfo_get_root_path(handle, &root);
  callback_seen.push_back(root + std::string(user_data == nullptr ? "" : " with user data"));
  return 1;
}

FRESH_TEST(CobaSearch, any_key_can_be_searched_for_with_any_callback) {
  platform.packages = {doubles::MakePackage("one", "/one"), doubles::MakePackage("two", "/two")};
  platform.packages[1].applications[0].metadata = {{"k", "true"}};
  getPackageByMetadataTag(NoteApplication, "k");
  EXPECT_EQ((std::vector<std::string>{"/two"}), callback_seen);
  EXPECT_TRUE(coBA.empty());
}

FRESH_TEST(CobaSearch, an_application_without_a_root_path_is_skipped_and_the_search_goes_on) {
  Package package = CobaPackage("one", "/one");
  package.applications[0].root.reset();
  platform.packages = {package};
  platform.packages.push_back(CobaPackage("two", "/two"));
  platform.packages.push_back(CobaPackage("three", "/three"));
  getPackageByMetadataTag(cobaCallback, kCobaKey);
  const Source source = Plugin("cobaCallback");
  EXPECT_TRUE(Holds(platform,
                    {TracedPlugin(kSearch, {source.Debug("Path : %s", "/two"), source.Debug("Path : %s", "/three")})}));

  platform.journal.clear();
  platform.packages.erase(platform.packages.begin());
  platform.FailNext("pkgmgrinfo_appinfo_get_root_path", -1);
  getPackageByMetadataTag(cobaCallback, kCobaKey);
  EXPECT_TRUE(Holds(platform, {TracedPlugin(kSearch, source.Debug("Path : %s", "/three"))}));
}

FRESH_TEST(CobaSearch, the_callback_answers_one_in_every_case) {
  platform.packages = {CobaPackage("one", "/proc/nowhere/one")};
  pkgmgrinfo_appinfo_h application = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("one", &application));
  EXPECT_EQ(1, cobaCallback(application, nullptr));
  platform.FailNext("pkgmgrinfo_appinfo_get_root_path", -1);
  EXPECT_EQ(1, cobaCallback(application, nullptr));
  platform.GiveNullNext("pkgmgrinfo_appinfo_get_root_path");
  EXPECT_EQ(1, cobaCallback(application, &platform));
}

struct FilterFailure {
  const char* function;
  Steps inside;
  std::string standard_error;
};

const FilterFailure kFilterFailures[] = {
    {"pkgmgrinfo_appinfo_metadata_filter_create",
     Join({Call("pkgmgrinfo_appinfo_metadata_filter_create()"),
           Plugin("getPackageByMetadataTag").Error("Error: Failed pkgmgrinfo_appinfo_metadata_filter_create")}),
     ""},
    {"pkgmgrinfo_appinfo_metadata_filter_add",
     Join({Call("pkgmgrinfo_appinfo_metadata_filter_create()"), Call("pkgmgrinfo_appinfo_metadata_filter_add(k, true)"),
           Call("pkgmgrinfo_appinfo_metadata_filter_destroy()"),
           Plugin("getPackageByMetadataTag").Error("Error: Failed pkgmgrinfo_appinfo_metadata_filter_add")}),
     ""},
    {"pkgmgrinfo_appinfo_metadata_filter_foreach",
     Join({Call("pkgmgrinfo_appinfo_metadata_filter_create()"), Call("pkgmgrinfo_appinfo_metadata_filter_add(k, true)"),
           Call("pkgmgrinfo_appinfo_metadata_filter_foreach(no user data)"),
           Plugin("getPackageByMetadataTag").Error("Error: Failed pkgmgrinfo_appinfo_metadata_filter_foreach"),
           Call("pkgmgrinfo_appinfo_metadata_filter_destroy()")}),
     "Failed pkgmgrinfo_appinfo_metadata_filter_foreach\n"},
};

TEST(CobaSearch, a_filter_that_fails_is_logged_and_destroyed) {
  for (const FilterFailure& failure : kFilterFailures) {
    for (const int code : {-1, 5}) {
      Fresh([&](Platform& platform) {
        platform.FailNext(failure.function, code);
        EXPECT_EQ(failure.standard_error, StandardErrorOf([] { getPackageByMetadataTag(cobaCallback, "k"); }));
        EXPECT_TRUE(Holds(platform, {TracedPlugin(kSearch, failure.inside)}));
        EXPECT_TRUE(AllRecordsDestroyed(platform));
      });
    }
  }
}

TEST(CobaSearch, the_pass_goes_on_after_a_filter_that_fails) {
  for (const FilterFailure& failure : kFilterFailures) {
    FreshOnDevice([&](Platform& platform) {
      platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
      platform.packages.push_back(CobaPackage("one", "/opt/usr/apps/one"));
      const std::string duplicate = std::string(kRoot) + "/A.dll";
      const std::string not_catalogued = std::string(kRoot) + "/C.dll";
      WriteFiles(
          {std::string(kCoreDirectory) + "A.dll", "/opt/usr/apps/one/shared/res/C.dll", duplicate, not_catalogued});
      platform.FailNext(failure.function, -1);
      StandardErrorOf([] { EXPECT_EQ(-1, gac("pkg")); });
      EXPECT_TRUE(coBA.empty());
      EXPECT_FALSE(IsThere(duplicate));
      EXPECT_TRUE(IsThere(not_catalogued));
      EXPECT_TRUE(AllRecordsDestroyed(platform));
    });
  }
}

// Returns how often the application's record was read before memory sufficed.
int EndsInOneWheneverMemoryRunsOut(pkgmgrinfo_appinfo_h handle) {
  int allocations = 0;
  while (coBA.empty() && allocations < 1000) {
    int answer = 0;
    EXPECT_FALSE(RunsOutOfMemoryAfter(allocations++, [&] { answer = cobaCallback(handle, nullptr); }));
    EXPECT_EQ(1, answer);
  }
  return allocations;
}

DEVICE_TEST(CobaSearch, the_callback_answers_one_when_memory_runs_out_as_well) {
  WriteFiles({"/opt/usr/apps/one/shared/res/Shared.Component.With.A.Long.Name.dll"});
  const Package package = CobaPackage("one", "/opt/usr/apps/one");
  Record* const record = doubles::Current().Create({Record::Kind::kApplication, {}, package.applications[0], {}});
  EXPECT_LT(5, EndsInOneWheneverMemoryRunsOut(record));
  EXPECT_EQ(1u, coBA.size());
}

}  // namespace
}  // namespace unit
