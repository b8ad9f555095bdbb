// Install, upgrade and removal: the assembly cache pass for several packages in one process.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/host/json.h"
#include "tests/integration/desk.h"
#include "tests/support/child.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/manifests.h"
#include "tests/support/removal_texts.h"
#include "tests/support/standard_error.h"
#include "tests/support/uris.h"

namespace {

using support::DuplicateLine;
using support::IsThere;
using support::ReadFile;
using support::WriteFile;
using testing::ElementsAre;
using testing::SizeIs;

const std::string kFrameworkDll = std::string(support::kFrameworkDirectory) + "A.dll";

DESK_TEST(InstallEvents, packages_in_turn_each_lose_their_duplicates) {
  const std::string first = desk.Register("org.first") + "/bin/A.dll";
  const std::string second = desk.Register("org.second") + "/bin/A.dll";
  for (const std::string& file : {kFrameworkDll, first, second}) WriteFile(file, "MZ");
  const LoadedPlugin plugin;
  std::string text;
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.first", &text));
  EXPECT_EQ("### INSTALL : morvath : org.first\n" + DuplicateLine(kFrameworkDll, first), text);
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.second", &text));
  EXPECT_EQ("### INSTALL : morvath : org.second\n" + DuplicateLine(kFrameworkDll, second), text);
  WriteFile(first, "MZ");
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.first", &text));
  EXPECT_EQ("### INSTALL : morvath : org.first\n" + DuplicateLine(kFrameworkDll, first), text);
  for (const std::string& dll : {first, second}) {
    EXPECT_FALSE(IsThere(dll));
    EXPECT_EQ(support::InformationText(kFrameworkDll, dll), ReadFile(dll + "_deleted"));
  }
  EXPECT_THAT(desk.LogTexts("orvelFX size = 1"), SizeIs(3));
  EXPECT_EQ("MZ", ReadFile(kFrameworkDll));
}

// Everything that can become of a DLL, in a package under debugging.
TEST(InstallEvents, a_debugged_package_loses_the_platforms_dlls_keeps_a_components_and_fails) {
  const auto body = [](const Desk& desk) {
    const std::string shared = desk.RegisterCoba("org.component") + "/shared/res/B.dll";
    const std::string root = desk.Register("org.debugged", {support::kDebuggingPrivilege}) + "/";
    const std::string dpc = std::string(support::kDpcDirectory) + "C.dll";
    for (const std::string& file : {kFrameworkDll, shared, dpc}) WriteFile(file, "MZ");
    for (const char* dll : {"A.dll", "B.dll", "C.dll", "D.dll"}) WriteFile(root + dll, "MZ");
    const LoadedPlugin plugin;
    EXPECT_EQ(-1, Desk::Send(plugin, "INSTALL", "org.debugged"));
    EXPECT_THAT(support::NamesIn(root), ElementsAre("A.dll_deleted", "B.dll", "C.dll", "D.dll"));
    EXPECT_EQ(0, Desk::Send(plugin, "UNDO", "org.debugged"));
  };
  OnDesk(body, {"/opt/usr/apps"});
}

DESK_TEST(InstallEvents, a_package_that_is_not_registered_is_only_told) {
  const LoadedPlugin plugin;
  std::string text;
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.unknown", &text));
  EXPECT_EQ("### INSTALL : morvath : org.unknown\n### INSTALL : morvath, pkgRoot is empty : org.unknown\n", text);
}

int Install(const LoadedPlugin& plugin, const support::Document& manifest, const std::string& id) {
  int result = -1;
  support::StandardErrorOf([&] { result = plugin.Event("INSTALL", manifest.get(), id.c_str()); });
  return result;
}

support::Document SampleManifest() {
  return support::ManifestOf(support::ApplicationElement("ui-application", "dotnet-apitest"));
}

TEST(InstallEvents, other_packages_samples_and_none_at_all_keep_their_dlls) {
  for (const auto& make : {support::OtherManifest, SampleManifest, +[] { return support::Document(); }}) {
    OnDesk([&](const Desk& desk) {
      const std::string dll = desk.Register("org.pkg") + "/A.dll";
      for (const std::string& file : {kFrameworkDll, dll}) WriteFile(file, "MZ");
      const LoadedPlugin plugin;
      EXPECT_EQ(0, Install(plugin, make(), "org.pkg"));
      EXPECT_TRUE(IsThere(dll));
    });
  }
}

DESK_TEST(InstallEvents, a_sample_after_another_package_is_no_exception) {
  const std::string dll = desk.Register("org.sample") + "/A.dll";
  for (const std::string& file : {kFrameworkDll, dll}) WriteFile(file, "MZ");
  const LoadedPlugin plugin;
  EXPECT_EQ(0, Desk::Send(plugin, "UNDO", "org.first"));
  EXPECT_EQ(0, Install(plugin, SampleManifest(), "org.sample"));
  EXPECT_FALSE(IsThere(dll));
}

DESK_TEST(InstallEvents, the_same_package_again_is_not_searched) {
  const std::string dll = desk.Register("org.pkg") + "/A.dll";
  for (const std::string& file : {kFrameworkDll, dll}) WriteFile(file, "MZ");
  const LoadedPlugin plugin;
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.pkg"));
  WriteFile(dll, "MZ");
  EXPECT_EQ(0, Desk::Send(plugin, "UPGRADE", "org.pkg"));
  EXPECT_TRUE(IsThere(dll));
}

DESK_TEST(InstallEvents, a_dll_in_a_closed_directory_stays) {
  const std::string root = desk.Register("org.pkg");
  for (const std::string& file : {kFrameworkDll, root + "/A.dll"}) WriteFile(file, "MZ");
  std::filesystem::permissions(root, std::filesystem::perms(0555));
  ASSERT_TRUE(support::GiveUpPrivileges());
  const LoadedPlugin plugin;
  EXPECT_EQ(0, Desk::Send(plugin, "INSTALL", "org.pkg"));
  EXPECT_THAT(desk.LogTexts("Failed to remove " + root + "/A.dll : " + std::strerror(EACCES)), SizeIs(1));
  EXPECT_TRUE(IsThere(root + "/A.dll"));
}

DESK_TEST(InstallEvents, the_log_holds_whole_lines_under_both_tags) {
  const LoadedPlugin plugin;
  EXPECT_EQ(0, Desk::Send(plugin, "UNDO", "org.pkg"));
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
}

// The phases and the signatures of the trace file, in order: "B gac", "E gac".
std::vector<std::string> SpansOf(const std::string& file) {
  std::vector<std::string> spans;
  for (const auto& event : host::ParseJson(ReadFile(file) + "]")) {
    const std::string name = event.at("name");
    spans.push_back(event.at("ph").get<std::string>() + name.substr(name.find(") ") + 1));
  }
  return spans;
}

DESK_TEST(InstallEvents, spans_nest_like_the_calls) {
  desk.Register("org.pkg");
  const std::string file = (desk.device().directory / "trace.json").string();
  setenv(host::kTraceVariable, file.c_str(), 1);
  const LoadedPlugin plugin;
  EXPECT_EQ(0, Desk::Send(plugin, "UPGRADE", "org.pkg"));
  const std::string upgrade = " int PKGMGR_PARSER_PLUGIN_UPGRADE(xmlDocPtr, const char*)";
  const std::string install = " int PKGMGR_PARSER_PLUGIN_INSTALL(xmlDocPtr, const char*)";
  const std::string gac = " int gac(const std::string&)";
  const std::string platform = " bool HasPlatformPrivilege(const std::string&)";
  const std::string privilege = " bool HasPrivilege(const std::string&, const std::string&)";
  const std::string search = " void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)";
  EXPECT_THAT(SpansOf(file),
              ElementsAre("B" + upgrade, "B" + install, "B" + gac, "B" + platform, "B" + privilege, "E" + privilege,
                          "E" + platform, "B" + search, "E" + search, "E" + gac, "E" + install, "E" + upgrade));
}

}  // namespace
