// Uninstall, recovery, clean and clean-up: the exact cache files, and what the loader then reads.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/integration/desk.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"

namespace {

using support::CobaManifest;
using support::kCobaFile;
using support::kTpaFile;
using support::ReadFile;
using support::StandardErrorOf;
using support::WriteFile;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Flags = std::map<std::string, bool>;

void ExpectCaches(const std::string& tpa, const std::string& coba) {
  EXPECT_EQ(tpa, ReadFile(kTpaFile));
  EXPECT_EQ(coba, ReadFile(kCobaFile));
  EXPECT_THAT(support::NamesIn(support::kCacheDirectory), ElementsAre("CoBA.txt", "TPA.txt"));
}

// Adds a CoBA package with these shared assemblies to the cache files.
std::string AddCoba(const Desk& desk, const LoadedPlugin& plugin, const std::string& id,
                    const std::vector<std::string>& assemblies) {
  const std::string directory = desk.RegisterCoba(id) + "/shared/res/";
  std::filesystem::create_directories(directory);
  for (const std::string& assembly : assemblies) WriteFile(directory + assembly);
  EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), id.c_str()));
  return directory;
}

DESK_TEST(CacheEvents, a_devices_life_leaves_both_files_byte_by_byte) {
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

  EXPECT_EQ(0, Desk::Send(plugin, "UNINSTALL", "org.b"));
  ExpectCaches("[START]:" + a + "One.dll:" + a + "Three.dll[END]", "[START]:" + a + "[END]");
  EXPECT_EQ(0, Desk::Send(plugin, "UNINSTALL", "org.a"));
  ExpectCaches("[START][END]", "[START][END]");
  EXPECT_EQ(5, desk.Loader().starts);
  EXPECT_THAT(desk.Loader().tpa, IsEmpty());
  EXPECT_EQ("", desk.Loader().error);
  EXPECT_THAT(desk.LogTexts("Can't restart"), IsEmpty());
}

TEST(CacheEvents, upgrade_then_clean_takes_an_ordinary_package_out) {
  for (const char* event : {"UPGRADE", "REMOVED"}) {
    OnDesk([&](const Desk& desk) {
      const LoadedPlugin plugin;
      const std::string other = AddCoba(desk, plugin, "org.other", {"O.dll"});
      AddCoba(desk, plugin, "org.pkg", {"P.dll"});
      EXPECT_EQ(0, Desk::Send(plugin, event, "org.pkg"));
      EXPECT_EQ(2, desk.Loader().starts) << "the main event leaves the cache alone";
      EXPECT_EQ(0, Desk::Send(plugin, "CLEAN", "org.pkg"));
      ExpectCaches("[START]:" + other + "O.dll[END]", "[START]:" + other + "[END]");
      EXPECT_EQ(3, desk.Loader().starts);
      EXPECT_THAT(desk.Loader().coba, ElementsAre(other));
      EXPECT_EQ(0, Desk::Send(plugin, "CLEAN", "org.pkg"));
      EXPECT_EQ(3, desk.Loader().starts) << "nothing changed the second time";
      EXPECT_EQ((Flags{{"org.pkg", true}}), plugin.Flags(kUpgradeFlags));
    });
  }
}

DESK_TEST(CacheEvents, a_loader_that_refuses_the_new_cache_fails_no_event) {
  const LoadedPlugin plugin;
  desk.RegisterCoba("org.pkg");  // has no shared resource directory, which the loader reports
  StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), "org.pkg")); });
  ExpectCaches("[START][END]", "[START]:/opt/usr/apps/org.pkg/shared/res/[END]");
  EXPECT_THAT(desk.LogTexts("Can't restart dotnet-loader-inhouse"), SizeIs(1));
  EXPECT_NE("", desk.Loader().error);
}

// What takes the name of the file that is written first: a directory, or a link.
TEST(CacheEvents, a_cache_file_that_cannot_be_written_anew_is_gone) {
  for (const bool link : {false, true}) {
    OnDesk([&](const Desk& desk) {
      const LoadedPlugin plugin;
      AddCoba(desk, plugin, "org.pkg", {"P.dll"});
      const std::string temporary = std::string(support::kCacheDirectory) + "temp_TPA.txt";
      if (link) {
        std::filesystem::create_symlink("elsewhere", temporary);
      } else {
        std::filesystem::create_directory(temporary);
      }
      EXPECT_EQ(0, Desk::Send(plugin, "UNINSTALL", "org.pkg"));
      EXPECT_FALSE(support::IsThere(kTpaFile));
      EXPECT_EQ("[START][END]", ReadFile(kCobaFile));
    });
  }
}

DESK_TEST(CacheEvents, a_component_without_assemblies_keeps_its_old_entries) {
  const LoadedPlugin plugin;
  const std::string shared = AddCoba(desk, plugin, "org.pkg", {"P.dll"});
  std::filesystem::remove(shared + "P.dll");
  StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("CLEAN", CobaManifest().get(), "org.pkg")); });
  ExpectCaches("[START]:" + shared + "P.dll[END]", "[START]:" + shared + "[END]");
}

}  // namespace
