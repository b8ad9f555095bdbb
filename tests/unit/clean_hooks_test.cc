// UNINSTALL, RECOVERUNINSTALL, CLEAN and CLEANUP with cache files.
#include "plugin/hooks.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kRoot = "/opt/usr/apps/pkg";
constexpr const char* kAssembly = "/opt/usr/apps/pkg/shared/res/A.dll";
constexpr const char* kDirectory = "/opt/usr/apps/pkg/shared/res/";
constexpr const char* kTpaWithPackage = "[START]/b/B.dll:/opt/usr/apps/pkg/shared/res/A.dll[END]";
constexpr const char* kCobaWithPackage = "[START]/opt/usr/apps/pkg/shared/res/:/b/shared/res/[END]";
constexpr const char* kTpaWithout = "[START]/b/B.dll[END]";
constexpr const char* kCobaWithout = "[START]/b/shared/res/[END]";

// A package with a root, listed in both cache files.
void PutListedPackage(Platform& platform) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  WriteFile(kTpaFile, kTpaWithPackage);
  WriteFile(kCobaFile, kCobaWithPackage);
}

void ExpectCaches(const std::string& tpa, const std::string& coba) {
  EXPECT_EQ(tpa, ReadFile(kTpaFile));
  EXPECT_EQ(coba, ReadFile(kCobaFile));
}

// The listed package is removed from both files.
Steps RemovedFromBoth() {
  return Removing({CacheRead(kTpaFile, {std::string(":") + kAssembly}, kTpaWithout), Saved(kTpaFile),
                   CacheRead(kCobaFile, {std::string(kDirectory) + ":"}, kCobaWithout), Saved(kCobaFile)});
}

// The package is in neither file any more.
Steps NothingRemoved() {
  return Removing({CacheRead(kTpaFile, {}, kTpaWithout), CacheRead(kCobaFile, {}, kCobaWithout)});
}

// Sends the event, which must return 0 and log these lines.
void ExpectEvent(int (*hook)(xmlDocPtr, const char*), const Document& manifest, const char* id,
                 std::initializer_list<Steps> journal) {
  doubles::Current().journal.clear();
  EXPECT_EQ(0, hook(manifest.get(), id));
  EXPECT_TRUE(Holds(doubles::Current(), journal));
}

DEVICE_TEST(Uninstall, a_listed_package_is_marked_taken_out_and_the_loader_restarted) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_UNINSTALL, DotnetManifest(), "pkg",
              {Hook("UNINSTALL", {DotnetWalk(), RemovedFromBoth(), LoaderRestarted()})});
  ExpectCaches(kTpaWithout, kCobaWithout);
  EXPECT_EQ((Flags{{"pkg", true}}), cacheStateUninstall);
  EXPECT_TRUE(aotStateUpgrade.empty());
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

DEVICE_TEST(Uninstall, a_package_that_is_not_listed_restarts_nothing) {
  PutListedPackage(platform);
  platform.packages.push_back(doubles::MakePackage("other", "/opt/usr/apps/other"));
  ExpectEvent(PKGMGR_PARSER_PLUGIN_UNINSTALL, DotnetManifest(), "other",
              {Hook("UNINSTALL", {DotnetWalk(), Removing({CacheRead(kTpaFile, {}, kTpaWithPackage),
                                                          CacheRead(kCobaFile, {}, kCobaWithPackage)})})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
}

DEVICE_TEST(Uninstall, a_package_without_a_root_is_marked_and_nothing_else) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_UNINSTALL, DotnetManifest(), "unknown", {Hook("UNINSTALL", {DotnetWalk()})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
  EXPECT_EQ((Flags{{"unknown", true}}), cacheStateUninstall);
}

DEVICE_TEST(Uninstall, a_failed_restart_does_not_fail_the_event) {
  PutListedPackage(platform);
  platform.FailNext("aul_restart_loader", -1);
  EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_UNINSTALL(DotnetManifest().get(), "pkg"));
  ExpectCaches(kTpaWithout, kCobaWithout);
}

DEVICE_TEST(Uninstall, the_following_clean_leaves_everything_alone) {
  PutListedPackage(platform);
  PKGMGR_PARSER_PLUGIN_UNINSTALL(DotnetManifest().get(), "pkg");
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, DotnetManifest(), "pkg", {Hook("CLEAN", {DotnetWalk()})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
  EXPECT_EQ((Flags{{"pkg", true}}), cacheStateUninstall);
  EXPECT_TRUE(aotStateUpgrade.empty());
}

DEVICE_TEST(Uninstall, a_package_once_marked_is_never_cleaned_again) {
  PutListedPackage(platform);
  PKGMGR_PARSER_PLUGIN_UNINSTALL(DotnetManifest().get(), "pkg");
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEANUP, CobaManifest(), "pkg", {Hook("CLEANUP", {Hook("CLEAN", {DotnetWalk()})})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
}

DEVICE_TEST(Recover, a_listed_package_is_taken_out_even_with_a_null_manifest) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL, nullptr, "pkg",
              {Hook("RECOVERUNINSTALL", {RemovedFromBoth(), LoaderRestarted()})});
  ExpectCaches(kTpaWithout, kCobaWithout);
  EXPECT_TRUE(cacheStateUninstall.empty());
  EXPECT_TRUE(aotStateUpgrade.empty());
  ExpectEvent(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL, OtherManifest(), "pkg",
              {Hook("RECOVERUNINSTALL", {NothingRemoved()})});
}

DEVICE_TEST(Recover, a_package_without_a_root_is_only_logged) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL, DotnetManifest(), "unknown",
              {Hook("RECOVERUNINSTALL",
                    {Removing({Plugin("removedPkgFromTPACacheFile")
                                   .At(426)
                                   .Error("remove from cache called for %s, but pkgroot is empty!", "unknown")})})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
}

DEVICE_TEST(Clean, a_coba_package_is_added_and_the_loader_restarted) {
  PutListedPackage(platform);
  WriteFile(kAssembly);
  ExpectEvent(
      PKGMGR_PARSER_PLUGIN_CLEAN, CobaManifest(), "pkg",
      {Hook("CLEAN", {DotnetWalk(), CobaFound(),
                      Adding({CacheRead(kTpaFile, {std::string(":") + kAssembly}, kTpaWithout), Saved(kTpaFile),
                              CacheRead(kCobaFile, {std::string(kDirectory) + ":"}, kCobaWithout), Saved(kCobaFile)}),
                      LoaderRestarted()})});
  ExpectCaches(kTpaWithPackage, "[START]/b/shared/res/:/opt/usr/apps/pkg/shared/res/[END]");
  EXPECT_EQ((Flags{{"pkg", false}}), cacheStateUninstall);
  EXPECT_TRUE(aotStateUpgrade.empty());  // not read for a CoBA package
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

DEVICE_TEST(Clean, a_coba_package_restarts_the_loader_even_when_nothing_could_be_added) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, CobaManifest(), "pkg",
              {Hook("CLEAN", {DotnetWalk(), CobaFound(), Adding({CacheMissing(kTpaFile), CacheMissing(kCobaFile)}),
                              LoaderRestarted()})});
  EXPECT_FALSE(IsThere(kTpaFile));
  EXPECT_FALSE(IsThere(kCobaFile));
}

DEVICE_TEST(Clean, a_coba_package_without_a_root_restarts_the_loader_too) {
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, CobaManifest(), "unknown",
              {Hook("CLEAN", {DotnetWalk(), CobaFound(),
                              Adding({Plugin("addPkgToTPACacheFile")
                                          .At(452)
                                          .Error("add to cache called for %s, but pkgroot is empty!", "unknown")}),
                              LoaderRestarted()})});
}

DEVICE_TEST(Clean, an_upgraded_package_is_taken_out_and_the_loader_restarted) {
  PutListedPackage(platform);
  aotStateUpgrade["pkg"] = true;
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, DotnetManifest(), "pkg",
              {Hook("CLEAN", {DotnetWalk(), NoCobaFound(), RemovedFromBoth(), LoaderRestarted()})});
  ExpectCaches(kTpaWithout, kCobaWithout);
  EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
  EXPECT_EQ((Flags{{"pkg", false}}), cacheStateUninstall);
}

DEVICE_TEST(Clean, an_upgraded_package_that_is_not_listed_restarts_nothing) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  WriteFile(kTpaFile, kTpaWithout);
  WriteFile(kCobaFile, kCobaWithout);
  aotStateUpgrade["pkg"] = true;
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, DotnetManifest(), "pkg",
              {Hook("CLEAN", {DotnetWalk(), NoCobaFound(), NothingRemoved()})});
}

DEVICE_TEST(Clean, a_package_never_upgraded_is_left_alone_and_leaves_false_flags) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEAN, DotnetManifest(), "pkg", {Hook("CLEAN", {DotnetWalk(), NoCobaFound()})});
  ExpectCaches(kTpaWithPackage, kCobaWithPackage);
  EXPECT_EQ((Flags{{"pkg", false}}), cacheStateUninstall);
  EXPECT_EQ((Flags{{"pkg", false}}), aotStateUpgrade);
}

FRESH_TEST(Clean, another_kind_of_package_leaves_no_flags) {
  EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_CLEAN(OtherManifest().get(), "pkg"));
  EXPECT_TRUE(cacheStateUninstall.empty());
  EXPECT_TRUE(aotStateUpgrade.empty());
}

DEVICE_TEST(Clean, keys_of_flags_are_whole_ids) {
  PutListedPackage(platform);
  cacheStateUninstall["PKG"] = true;
  cacheStateUninstall["pkg2"] = true;
  aotStateUpgrade["pkg"] = true;
  EXPECT_EQ(0, PKGMGR_PARSER_PLUGIN_CLEAN(DotnetManifest().get(), "pkg"));
  ExpectCaches(kTpaWithout, kCobaWithout);
}

FRESH_TEST(CleanUp, a_package_without_a_root_is_not_classified_and_not_marked) {
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEANUP, DotnetManifest(), "unknown", {Hook("CLEANUP", {})});
  EXPECT_TRUE(aotStateUpgrade.empty());
  EXPECT_TRUE(cacheStateUninstall.empty());
}

DEVICE_TEST(CleanUp, a_listed_package_is_marked_and_cleaned) {
  PutListedPackage(platform);
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEANUP, DotnetManifest(), "pkg",
              {Hook("CLEANUP", {Hook("CLEAN", {DotnetWalk(), NoCobaFound(), RemovedFromBoth(), LoaderRestarted()})})});
  ExpectCaches(kTpaWithout, kCobaWithout);
  EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
}

FRESH_TEST(CleanUp, another_kind_of_package_is_marked_before_it_is_refused) {
  platform.packages.push_back(doubles::MakePackage("pkg", kRoot));
  ExpectEvent(PKGMGR_PARSER_PLUGIN_CLEANUP, OtherManifest(), "pkg",
              {Hook("CLEANUP", {Hook("CLEAN", {OtherWalk(), NotInhouse("CLEAN")})})});
  EXPECT_EQ((Flags{{"pkg", true}}), aotStateUpgrade);
}

}  // namespace
}  // namespace unit
