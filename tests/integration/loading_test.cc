// Loading and unloading: a fresh state every time; and a program's own platform functions replace those of the
// libraries.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/integration/desk.h"
#include "tests/support/command.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"
#include "tests/support/uris.h"

namespace {

using support::DotnetManifest;
using support::OtherManifest;
using support::StandardErrorOf;
using support::WriteFile;
using testing::IsEmpty;

const char* const kCatalogues[] = {kCoreCatalogue, kFrameworkCatalogue, kCobaCatalogue, kLibraryCatalogue};

// Makes every table and static variable change.
void UseEverything(const LoadedPlugin& plugin) {
  StandardErrorOf([&] {
    EXPECT_EQ(0, plugin.Event("UPGRADE", DotnetManifest().get(), "org.pkg"));
    EXPECT_EQ(0, plugin.Event("UNINSTALL", DotnetManifest().get(), "org.pkg"));
  });
  for (const char* catalogue : kCatalogues) EXPECT_EQ(1u, plugin.Catalogue(catalogue).size()) << catalogue;
  EXPECT_EQ(1u, plugin.Flags(kUninstallFlags).size());
  EXPECT_EQ(1u, plugin.Flags(kUpgradeFlags).size());
}

DESK_TEST(Loading, a_library_that_was_used_is_really_unloaded_and_starts_afresh) {
  const std::string root = desk.RegisterCoba("org.pkg");
  for (const std::string& file :
       {support::kCoreDirectory + std::string("A.dll"), support::kFrameworkDirectory + std::string("F.dll"),
        root + "/shared/res/C.dll", root + "/lib/L.dll"}) {
    WriteFile(file);
  }
  EXPECT_FALSE(LoadedPlugin::IsInMemory());
  {
    const LoadedPlugin plugin;
    EXPECT_TRUE(LoadedPlugin::IsInMemory());
    UseEverything(plugin);
  }
  EXPECT_FALSE(LoadedPlugin::IsInMemory());

  const LoadedPlugin plugin;
  for (const char* catalogue : kCatalogues) EXPECT_THAT(plugin.Catalogue(catalogue), IsEmpty()) << catalogue;
  EXPECT_THAT(plugin.Flags(kUninstallFlags), IsEmpty());
  EXPECT_THAT(plugin.Flags(kUpgradeFlags), IsEmpty());
  const std::string refused =
      StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("INSTALL", OtherManifest().get(), "org.pkg")); });
  EXPECT_EQ("### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : org.pkg\n", refused);
  const std::string passed =
      StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("INSTALL", DotnetManifest().get(), "org.pkg")); });
  EXPECT_EQ("### INSTALL : morvath : org.pkg\n", passed);
}

DESK_TEST(Loading, a_second_handle_shares_the_state_of_the_first) {
  const LoadedPlugin first;
  const LoadedPlugin second;
  EXPECT_EQ(0, first.Event("UNINSTALL", DotnetManifest().get(), "org.pkg"));
  EXPECT_EQ(&first.Flags(kUninstallFlags), &second.Flags(kUninstallFlags));
  EXPECT_TRUE(second.Flags(kUninstallFlags).at("org.pkg"));
}

DESK_TEST(Loading, launcher_tools_find_functions_by_their_mangled_names) {
  const LoadedPlugin plugin;
  auto* const ends = plugin.Function<bool(const std::string&, const std::string&)>(
      "_Z7endWithRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES6_");
  EXPECT_TRUE(ends("Foo.dll", ".dll"));
  EXPECT_FALSE(ends("Foo.DLL", ".dll"));
  EXPECT_EQ(support::kCobaKey, plugin.Object<const std::string>("_ZN11MetadataKey4coBAB5cxx11E"));
}

DESK_TEST(Loading, a_null_id_reaches_the_caller_as_the_standard_librarys_error) {
  const LoadedPlugin plugin;
  try {
    plugin.Event("UPGRADE", nullptr, nullptr);
    ADD_FAILURE() << "nothing was raised";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ("basic_string: construction from null is not valid", error.what());
  }
  EXPECT_THAT(desk.LogTexts("DotNETLog:"), testing::SizeIs(2));
}

TEST(Loading, a_programs_own_platform_functions_take_the_libraries_place) {
  EXPECT_EQ(
      "root asked: org.pkg\n"
      "CLEANUP: 0\n"
      "root asked: org.pkg\n"
      "loader restarted: dotnet-loader-inhouse\n"
      "restart: done\n"
      "log lines: 10\n"
      "spans: 4 begun, 4 ended\n",
      support::OutputOf(support::Quoted(PLATFORM_TAKING_PROGRAM)));
}

}  // namespace
