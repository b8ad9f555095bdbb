// Install, upgrade and removal: the assembly cache pass over several packages of one process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/integration/desk.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/manifests.h"
#include "tests/support/removal_texts.h"
#include "tests/support/standard_error.h"
#include "tests/support/uris.h"

namespace {

using support::DotnetManifest;
using support::DuplicateLine;
using support::IsThere;
using support::OtherManifest;
using support::ReadFile;
using support::StandardErrorOf;
using support::WriteFile;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const std::string kFrameworkDll = std::string(support::kFrameworkDirectory) + "A.dll";

// Runs the event for a dotnet-inhouse manifest; answers its result, and its standard error in `text`.
int RunEvent(const LoadedPlugin& plugin, const std::string& event, const std::string& id, std::string* text = nullptr) {
  int result = 0;
  const std::string error = StandardErrorOf([&] { result = plugin.Event(event, DotnetManifest().get(), id.c_str()); });
  if (text != nullptr) *text = error;
  return result;
}

TEST(InstallEvents, packages_in_turn_each_lose_their_duplicates) {
  OnDesk([](const Desk& desk) {
    const std::string first = desk.Register("org.first") + "/bin/A.dll";
    const std::string second = desk.Register("org.second") + "/bin/A.dll";
    for (const std::string& file : {kFrameworkDll, first, second}) WriteFile(file, "MZ");
    const LoadedPlugin plugin;
    std::string text;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.first", &text));
    EXPECT_EQ("### INSTALL : morvath : org.first\n" + DuplicateLine(kFrameworkDll, first), text);
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.second", &text));
    EXPECT_EQ("### INSTALL : morvath : org.second\n" + DuplicateLine(kFrameworkDll, second), text);
    WriteFile(first, "MZ");
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.first", &text));
    EXPECT_EQ("### INSTALL : morvath : org.first\n" + DuplicateLine(kFrameworkDll, first), text);
    for (const std::string& dll : {first, second}) {
      EXPECT_FALSE(IsThere(dll));
      EXPECT_EQ(support::InformationText(kFrameworkDll, dll), ReadFile(dll + "_deleted"));
    }
    EXPECT_THAT(desk.LogTexts("orvelFX size = 1"), SizeIs(3));
    EXPECT_EQ("MZ", ReadFile(kFrameworkDll));
  });
}

TEST(InstallEvents, the_same_package_in_a_row_is_passed_over_once) {
  OnDesk([](const Desk& desk) {
    const std::string dll = desk.Register("org.pkg") + "/A.dll";
    WriteFile(kFrameworkDll);
    const LoadedPlugin plugin;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.pkg"));
    WriteFile(dll);
    std::string text;
    EXPECT_EQ(0, RunEvent(plugin, "UPGRADE", "org.pkg", &text));
    EXPECT_EQ("### INSTALL : morvath : org.pkg\n### INSTALL : morvath, GAC already run for same pkgId : org.pkg\n",
              text);
    EXPECT_TRUE(IsThere(dll));
    EXPECT_THAT(desk.LogTexts("GAC already run for same pkgId (org.pkg)"), SizeIs(1));
  });
}

TEST(InstallEvents, a_library_of_an_earlier_package_makes_a_later_copy_a_duplicate) {
  OnDesk([](const Desk& desk) {
    const std::string library = desk.Register("org.first") + "/lib/L.dll";
    const std::string copy = desk.Register("org.second") + "/lib/L.dll";
    WriteFile(library);
    WriteFile(copy);
    const LoadedPlugin plugin;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.first"));
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.second"));
    EXPECT_TRUE(IsThere(library));
    EXPECT_FALSE(IsThere(copy));
  });
}

TEST(InstallEvents, what_a_coba_package_shares_is_no_one_elses) {
  OnDesk([](const Desk& desk) {
    const std::string shared = desk.RegisterCoba("org.component") + "/shared/res/C.dll";
    const std::string copy = desk.Register("org.pkg") + "/bin/C.dll";
    WriteFile(shared);
    WriteFile(copy);
    const LoadedPlugin plugin;
    std::string text;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.pkg", &text));
    EXPECT_EQ("### INSTALL : morvath : org.pkg\n" + DuplicateLine(shared, copy), text);
    EXPECT_FALSE(IsThere(copy));
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.component"));
    EXPECT_TRUE(IsThere(shared));
  });
}

TEST(InstallEvents, the_application_api_counts_for_privileged_packages_only) {
  OnDesk([](const Desk& desk) {
    const std::string api = std::string(support::kTvAppApiDirectory) + "T.dll";
    const std::string plain = desk.Register("org.plain") + "/T.dll";
    const std::string privileged = desk.Register("org.privileged", {"other", support::kPlatformPrivilege}) + "/T.dll";
    for (const std::string& file : {api, plain, privileged}) WriteFile(file);
    const LoadedPlugin plugin;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.plain"));
    EXPECT_TRUE(IsThere(plain));
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.privileged"));
    EXPECT_FALSE(IsThere(privileged));
  });
}

TEST(InstallEvents, a_copy_of_an_assembly_in_the_read_write_area_stays) {
  OnDesk([](const Desk& desk) {
    host::Package component;
    component.id = "org.component";
    component.version = "1.0";
    component.type = "opk";
    component.root = std::string(host::kDefaultReadWriteRoot) + "/org.component";
    component.main_app_id = "org.component.app";
    host::Application application;
    application.id = component.main_app_id;
    application.kind = "ui-application";
    application.metadata = {{support::kCobaKey, "true"}};
    component.applications = {application};
    host::PackageStore(desk.device().Database(), host::PackageStore::Mode::kReadWrite).Put(component);
    const std::string copy = desk.Register("org.pkg") + "/C.dll";
    WriteFile(component.root + "/shared/res/C.dll");
    WriteFile(copy);
    const LoadedPlugin plugin;
    std::string text;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.pkg", &text));
    EXPECT_THAT(text, EndsWith("### INSTALL : morvath, org file is in rw \n"));
    EXPECT_TRUE(IsThere(copy));
    EXPECT_FALSE(IsThere(copy + "_deleted"));
  });
}

TEST(InstallEvents, a_package_under_debugging_with_duplicates_fails_and_undo_changes_nothing) {
  OnDesk([](const Desk& desk) {
    const std::string dll = desk.Register("org.pkg", {support::kDebuggingPrivilege}) + "/bin/A.dll";
    WriteFile(kFrameworkDll);
    WriteFile(dll);
    const LoadedPlugin plugin;
    EXPECT_EQ(-1, RunEvent(plugin, "INSTALL", "org.pkg"));
    EXPECT_THAT(desk.LogTexts("Duplicated DLL found. Please refer guide : " ORVEL_GUIDE_URL "\033[0m"), SizeIs(1));
    EXPECT_FALSE(IsThere(dll));
    EXPECT_EQ(0, RunEvent(plugin, "UNDO", "org.pkg"));
    EXPECT_FALSE(IsThere(dll));
    EXPECT_TRUE(IsThere(dll + "_deleted"));
    EXPECT_THAT(plugin.Flags(kUninstallFlags), IsEmpty());
    EXPECT_THAT(plugin.Flags(kUpgradeFlags), IsEmpty());
    EXPECT_EQ(0, desk.Loader().starts);
  });
}

TEST(InstallEvents, upgrade_and_removed_of_a_package_under_debugging_fail_too) {
  for (const char* event : {"UPGRADE", "REMOVED"}) {
    OnDesk([&](const Desk& desk) {
      WriteFile(desk.Register("org.pkg", {support::kDebuggingPrivilege}) + "/A.dll");
      WriteFile(kFrameworkDll);
      const LoadedPlugin plugin;
      EXPECT_EQ(-1, RunEvent(plugin, event, "org.pkg"));
      EXPECT_TRUE(plugin.Flags(kUpgradeFlags).at("org.pkg"));
    });
    if (testing::Test::IsSkipped()) return;
  }
}

TEST(InstallEvents, a_package_that_is_not_registered_is_only_told) {
  OnDesk([](const Desk&) {
    const LoadedPlugin plugin;
    std::string text;
    EXPECT_EQ(0, RunEvent(plugin, "INSTALL", "org.unknown", &text));
    EXPECT_EQ("### INSTALL : morvath : org.unknown\n### INSTALL : morvath, pkgRoot is empty : org.unknown\n", text);
  });
}

TEST(InstallEvents, another_kind_of_package_is_refused_until_a_dotnet_inhouse_one_was_seen) {
  OnDesk([](const Desk& desk) {
    const std::string dll = desk.Register("org.pkg") + "/A.dll";
    WriteFile(kFrameworkDll);
    WriteFile(dll);
    const LoadedPlugin plugin;
    EXPECT_EQ("### INSTALL : morvath, skip gac. it's not dotnet-inhouse app : org.pkg\n",
              StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("INSTALL", OtherManifest().get(), "org.pkg")); }));
    EXPECT_TRUE(IsThere(dll));
    EXPECT_EQ(0, RunEvent(plugin, "UNDO", "org.other"));
    EXPECT_EQ("### INSTALL : morvath : org.pkg\n" + DuplicateLine(kFrameworkDll, dll),
              StandardErrorOf([&] { EXPECT_EQ(0, plugin.Event("INSTALL", OtherManifest().get(), "org.pkg")); }));
    EXPECT_FALSE(IsThere(dll));
  });
}

TEST(InstallEvents, the_log_holds_whole_lines_under_both_tags) {
  OnDesk([](const Desk& desk) {
    const LoadedPlugin plugin;
    EXPECT_EQ(0, RunEvent(plugin, "UNDO", "org.pkg"));
    std::vector<std::string> lines;
    for (const host::LogRecord& record : desk.Log())
      lines.push_back(record.priority + (" " + record.tag) + " " + record.text);
    EXPECT_THAT(
        lines,
        ElementsAre(
            testing::MatchesRegex("D QUARNEL log: FunctionEntryExitTracker\\([0-9]+\\) > .\\[90m \\+DotNETLog:morvath"
                                  "\\([0-9]+\\) int PKGMGR_PARSER_PLUGIN_UNDO\\(xmlDocPtr, const char\\*\\).\\[0m"),
            testing::MatchesRegex("D NETCORE_INSTALLER_PLUGIN morvath: isAppDotnetInhouse\\([0-9]+\\) > .\\[0mname "
                                  "manifest.\\[0m"),
            testing::MatchesRegex("D NETCORE_INSTALLER_PLUGIN morvath: isAppDotnetInhouse\\([0-9]+\\) > .\\[0mname "
                                  "ui-application.\\[0m"),
            testing::MatchesRegex("I NETCORE_INSTALLER_PLUGIN morvath: isAppDotnetInhouse\\([0-9]+\\) > .\\[36mApp is "
                                  "dotnet-\\*.\\[0m"),
            testing::MatchesRegex("D QUARNEL log: ~FunctionEntryExitTracker\\([0-9]+\\) > .\\[90m-DotNETLog:morvath"
                                  "\\([0-9]+\\) int PKGMGR_PARSER_PLUGIN_UNDO\\(xmlDocPtr, const char\\*\\).\\[0m")));
  });
}

// The phases and the signatures of the trace file, in order: "B gac", "E gac".
std::vector<std::string> SpansOf(const std::string& file) {
  std::vector<std::string> spans;
  for (const auto& event : nlohmann::json::parse(ReadFile(file) + "]")) {
    const std::string name = event.at("name");
    spans.push_back(event.at("ph").get<std::string>() + name.substr(name.find(") ") + 1));
  }
  return spans;
}

TEST(InstallEvents, spans_nest_like_the_calls) {
  OnDesk([](const Desk& desk) {
    desk.Register("org.pkg");
    const std::string file = (desk.device().directory / "trace.json").string();
    setenv(host::kTraceVariable, file.c_str(), 1);
    const LoadedPlugin plugin;
    EXPECT_EQ(0, RunEvent(plugin, "UPGRADE", "org.pkg"));
    const std::string upgrade = " int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr, const char*)";
    const std::string install = " int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr, const char*)";
    const std::string gac = " int gac(const std::string&)";
    const std::string platform = " bool HasPlatformPrivilege(const std::string&)";
    const std::string privilege = " bool HasPrivilege(const std::string&, const std::string&)";
    const std::string search = " void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)";
    EXPECT_THAT(SpansOf(file),
                ElementsAre("B" + upgrade, "B" + install, "B" + gac, "B" + platform, "B" + privilege, "E" + privilege,
                            "E" + platform, "B" + search, "E" + search, "E" + gac, "E" + install, "E" + upgrade));
  });
}

}  // namespace
