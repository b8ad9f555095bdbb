// Uninstall, recovery, clean and clean-up: the cache files byte by byte, and what the loader then reads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/integration/desk.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"

namespace {

using support::CobaManifest;
using support::DotnetManifest;
using support::kCobaFile;
using support::kTpaFile;
using support::OtherManifest;
using support::ReadFile;
using support::StandardErrorOf;
using support::WriteFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

using Flags = std::map<std::string, bool>;

void ExpectCaches(const std::string& tpa, const std::string& coba) {
  EXPECT_EQ(tpa, ReadFile(kTpaFile));
  EXPECT_EQ(coba, ReadFile(kCobaFile));
  EXPECT_THAT(support::NamesIn(support::kCacheDirectory), ElementsAre("CoBA.txt", "TPA.txt"));
}

// A CoBA package with these shared assemblies, added to the cache files.
std::string AddCoba(const Desk& desk, const LoadedPlugin& plugin, const std::string& id,
                    const std::vector<std::string>& assemblies) {
  const std::string directory = desk.RegisterCoba(id) + "/shared/res/";
  std::filesystem::create_directories(directory);
  for (const std::string& assembly : assemblies) WriteFile(directory + assembly);
  EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), id.c_str()));
  return directory;
}

int RunEvent(const LoadedPlugin& plugin, const std::string& event, const char* id) {
  int result = -2;
  StandardErrorOf([&] { result = plugin.Event(event, DotnetManifest().get(), id); });
  return result;
}

TEST(CacheEvents, a_devices_life_leaves_both_files_byte_by_byte) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    ExpectCaches("[START][END]", "[START][END]");
    const std::string a = AddCoba(desk, plugin, "org.a", {"Two.dll", "One.dll", "notes.txt"});
    ExpectCaches("[START]:" + a + "One.dll:" + a + "Two.dll[END]", "[START]:" + a + "[END]");
    EXPECT_EQ(1, desk.Loader().starts);

    const std::string b = AddCoba(desk, plugin, "org.b", {"B.dll"});
    ExpectCaches("[START]:" + a + "One.dll:" + a + "Two.dll:" + b + "B.dll[END]", "[START]:" + a + ":" + b + "[END]");
    EXPECT_THAT(desk.Loader().tpa, ElementsAre(a + "One.dll", a + "Two.dll", b + "B.dll"));
    EXPECT_THAT(desk.Loader().coba, ElementsAre(a, b));

    std::filesystem::remove(a + "Two.dll");
    AddCoba(desk, plugin, "org.a", {"Three.dll"});
    ExpectCaches("[START]:" + b + "B.dll:" + a + "One.dll:" + a + "Three.dll[END]", "[START]:" + b + ":" + a + "[END]");

    EXPECT_EQ(0, RunEvent(plugin, "UNINSTALL", "org.b"));
    ExpectCaches("[START]:" + a + "One.dll:" + a + "Three.dll[END]", "[START]:" + a + "[END]");
    EXPECT_EQ(0, RunEvent(plugin, "UNINSTALL", "org.a"));
    ExpectCaches("[START][END]", "[START][END]");
    EXPECT_EQ(5, desk.Loader().starts);
    EXPECT_THAT(desk.Loader().tpa, IsEmpty());
    EXPECT_EQ("", desk.Loader().error);
    EXPECT_THAT(desk.LogTexts("Can't restart"), IsEmpty());
  });
}

TEST(CacheEvents, upgrade_then_clean_takes_an_ordinary_package_out) {
  for (const char* event : {"UPGRADE", "REMOVED"}) {
    OnDesk([&](const Desk& desk) {
      const LoadedPlugin plugin;
      const std::string other = AddCoba(desk, plugin, "org.other", {"O.dll"});
      AddCoba(desk, plugin, "org.pkg", {"P.dll"});
      EXPECT_EQ(0, RunEvent(plugin, event, "org.pkg"));
      EXPECT_EQ(2, desk.Loader().starts) << "the main event leaves the cache alone";
      EXPECT_EQ(0, RunEvent(plugin, "CLEAN", "org.pkg"));
      ExpectCaches("[START]:" + other + "O.dll[END]", "[START]:" + other + "[END]");
      EXPECT_EQ(3, desk.Loader().starts);
      EXPECT_THAT(desk.Loader().coba, ElementsAre(other));
      EXPECT_EQ(0, RunEvent(plugin, "CLEAN", "org.pkg"));
      EXPECT_EQ(3, desk.Loader().starts) << "nothing changed the second time";
      EXPECT_EQ((Flags{{"org.pkg", true}}), plugin.Flags(kUpgradeFlags));
    });
    if (testing::Test::IsSkipped()) return;
  }
}

TEST(CacheEvents, upgrade_then_clean_renews_a_coba_package) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    const std::string directory = AddCoba(desk, plugin, "org.pkg", {"Old.dll"});
    std::filesystem::rename(directory + "Old.dll", directory + "New.dll");
    StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("UPGRADE", CobaManifest().get(), "org.pkg")); });
    EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), "org.pkg"));
    ExpectCaches("[START]:" + directory + "New.dll[END]", "[START]:" + directory + "[END]");
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_EQ("", desk.Loader().error);
  });
}

TEST(CacheEvents, uninstall_then_clean_changes_the_cache_once) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    AddCoba(desk, plugin, "org.pkg", {"P.dll"});
    EXPECT_EQ(0, RunEvent(plugin, "UNINSTALL", "org.pkg"));
    ExpectCaches("[START][END]", "[START][END]");
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), "org.pkg"));
    ExpectCaches("[START][END]", "[START][END]");
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_EQ((Flags{{"org.pkg", true}}), (Flags{{"org.pkg", plugin.Flags(kUninstallFlags).at("org.pkg")}}));
  });
}

TEST(CacheEvents, cleanup_takes_a_package_out_and_needs_its_root) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    AddCoba(desk, plugin, "org.pkg", {"P.dll"});
    EXPECT_EQ(0, RunEvent(plugin, "CLEANUP", "org.unknown"));
    EXPECT_EQ(0u, plugin.Flags(kUpgradeFlags).count("org.unknown"));
    EXPECT_EQ(0, RunEvent(plugin, "CLEANUP", "org.pkg"));
    ExpectCaches("[START][END]", "[START][END]");
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_TRUE(plugin.Flags(kUpgradeFlags).at("org.pkg"));
  });
}

TEST(CacheEvents, recovery_of_an_uninstall_takes_a_package_out_without_a_manifest) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    AddCoba(desk, plugin, "org.pkg", {"P.dll"});
    EXPECT_EQ(0, plugin.Event("RECOVERUNINSTALL", nullptr, "org.pkg"));
    ExpectCaches("[START][END]", "[START][END]");
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_EQ(0, plugin.Event("RECOVERUNINSTALL", nullptr, "org.pkg"));
    EXPECT_EQ(2, desk.Loader().starts);
    EXPECT_EQ(0, plugin.Event("RECOVERUNINSTALL", nullptr, "org.unknown"));
    EXPECT_THAT(desk.LogTexts("remove from cache called for org.unknown, but pkgroot is empty!"), SizeIs(1));
  });
}

TEST(CacheEvents, clean_of_a_package_never_upgraded_leaves_false_flags_only) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    const std::string directory = AddCoba(desk, plugin, "org.pkg", {"P.dll"});
    EXPECT_EQ(0, RunEvent(plugin, "CLEAN", "org.pkg"));
    ExpectCaches("[START]:" + directory + "P.dll[END]", "[START]:" + directory + "[END]");
    EXPECT_EQ(1, desk.Loader().starts);
    EXPECT_EQ((Flags{{"org.pkg", false}}), plugin.Flags(kUninstallFlags));
    EXPECT_EQ((Flags{{"org.pkg", false}}), plugin.Flags(kUpgradeFlags));
  });
}

TEST(CacheEvents, a_coba_package_without_assemblies_is_listed_by_its_directory) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    const std::string directory = AddCoba(desk, plugin, "org.pkg", {});
    ExpectCaches("[START][END]", "[START]:" + directory + "[END]");
    EXPECT_EQ("", desk.Loader().error);
  });
}

TEST(CacheEvents, missing_cache_files_stay_missing_and_the_failed_restart_is_logged) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    std::filesystem::remove(kTpaFile);
    std::filesystem::remove(kCobaFile);
    StandardErrorOf([&] { AddCoba(desk, plugin, "org.pkg", {"P.dll"}); });
    EXPECT_THAT(support::NamesIn(support::kCacheDirectory), IsEmpty());
    EXPECT_THAT(desk.LogTexts("error access cache path: "), SizeIs(2));
    EXPECT_THAT(desk.LogTexts("Can't restart dotnet-loader-inhouse"),
                ElementsAre(testing::StartsWith("morvath: restartDotnetCandidateProcess(")));
    EXPECT_THAT(desk.Loader().error, HasSubstr("TPA.txt"));
  });
}

TEST(CacheEvents, a_loader_that_refuses_the_new_cache_fails_no_event) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    desk.RegisterCoba("org.pkg");  // without a shared resource directory, which the loader misses
    StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), "org.pkg")); });
    ExpectCaches("[START][END]", "[START]:/opt/usr/apps/org.pkg/shared/res/[END]");
    EXPECT_THAT(desk.LogTexts("Can't restart dotnet-loader-inhouse"), SizeIs(1));
    EXPECT_NE("", desk.Loader().error);
  });
}

TEST(CacheEvents, another_kind_of_package_is_not_cleaned) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    desk.Register("org.pkg");
    WriteFile(kCobaFile, "[START]/opt/usr/apps/org.pkg/shared/res/[END]");
    EXPECT_EQ(0, plugin.Event("UNINSTALL", OtherManifest().get(), "org.pkg"));
    EXPECT_EQ(0, plugin.Event("CLEANUP", OtherManifest().get(), "org.pkg"));
    ExpectCaches("[START][END]", "[START]/opt/usr/apps/org.pkg/shared/res/[END]");
    EXPECT_THAT(desk.LogTexts("### App type is not dotnet-inhouse ###"), SizeIs(2));
    EXPECT_EQ(0, desk.Loader().starts);
    EXPECT_THAT(plugin.Flags(kUninstallFlags), IsEmpty());
  });
}

TEST(CacheEvents, lines_and_labels_of_the_cache_files_carry_their_fixed_numbers) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    AddCoba(desk, plugin, "org.pkg", {"P.dll"});
    EXPECT_EQ(0, RunEvent(plugin, "UNINSTALL", "org.pkg"));
    EXPECT_THAT(desk.LogTexts("morvath: readCacheAndRemovePkg(396) > "), SizeIs(4));
    EXPECT_THAT(desk.LogTexts("morvath: readCacheAndRemovePkg(412) > "), SizeIs(2));
    EXPECT_THAT(desk.LogTexts("morvath: readCacheAndRemovePkg(416) > "), SizeIs(4));
    EXPECT_THAT(desk.LogTexts("DotNETLog:morvath(381) bool readCacheAndRemovePkg("), SizeIs(8));
    EXPECT_THAT(desk.LogTexts("DotNETLog:morvath(422) bool removedPkgFromTPACacheFile("), SizeIs(2));
    EXPECT_THAT(desk.LogTexts("DotNETLog:morvath(448) void addPkgToTPACacheFile("), SizeIs(2));
    EXPECT_THAT(desk.LogTexts("platform_utils: writeStringToFile(173) > "), SizeIs(4));
    EXPECT_THAT(desk.LogTexts("platform_utils: writeStringToFile(177) > "), SizeIs(4));
  });
}

}  // namespace
