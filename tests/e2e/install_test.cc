// Installing and upgrading through the real plug-in: DLLs, cache files, rollback, and the output.
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class InstallE2e : public HookDesk {
 protected:
  static constexpr const char* kRoot = "/opt/usr/globalapps/";

  bool IsOnDevice(const std::string& path) const { return support::IsThere(OnDesk(kRoot + path)); }

  // A package that shares one assembly.
  std::string Component(const std::string& version = "1.0") const {
    return MakePackage("component-" + version, ManifestText("org.example.component", version, CobaMetadata()),
                       {{"shared/res/Component.dll", "component"}});
  }
  std::string Debugged(const std::string& version, const std::map<std::string, std::string>& files) const {
    return MakePackage("debugged-" + version, ManifestText("org.example.debugged", version, "", DebuggingPrivileges()),
                       files);
  }
};

TEST_F(InstallE2e, a_package_is_copied_registered_and_told_of) {
  const std::string package =
      MakePackage("shop", ManifestText("org.example.shop", "1.0"), {{"bin/Main.dll", "main"}, {"res/a/b.txt", "deep"}});
  const Result result = RunExpecting(0, {"install", package});
  EXPECT_THAT(result.out, HasSubstr("installed org.example.shop 1.0 (/opt/usr/globalapps/org.example.shop)\n"
                                    "    INSTALL returned 0, CLEAN returned 0\n"
                                    "    TPA.txt  unchanged\n"
                                    "    CoBA.txt unchanged\n"
                                    "    loader   not restarted\n"));
  EXPECT_EQ(support::ReadFile(OnDesk(std::string(kRoot) + "org.example.shop/res/a/b.txt")), "deep");
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "org.example.shop  1.0  /opt/usr/globalapps/org.example.shop\n");
}

TEST_F(InstallE2e, the_hooks_own_standard_error_lines_pass_through) {
  const Result result = RunExpecting(0, {"install", MakePackage("a", ManifestText("org.example.a", "1"))});
  EXPECT_THAT(result.err, HasSubstr("### INSTALL : morvath : org.example.a\n"));
}

TEST_F(InstallE2e, a_dll_of_the_platform_is_removed_and_the_information_file_named) {
  AddPlatformFile("framework/Json.dll");
  const std::string package =
      MakePackage("shop", ManifestText("org.example.shop", "1"), {{"bin/Json.dll", "x"}, {"bin/Own.dll", "y"}});
  const Result result = RunExpecting(0, {"install", package});
  EXPECT_THAT(result.out, HasSubstr("    removed  bin/Json.dll: the platform has "
                                    "/usr/share/dotnet.orvel/framework/Json.dll (see bin/Json.dll_deleted)\n"));
  EXPECT_FALSE(IsOnDevice("org.example.shop/bin/Json.dll"));
  EXPECT_TRUE(IsOnDevice("org.example.shop/bin/Own.dll"));
  EXPECT_EQ(support::ReadFile(OnDesk(std::string(kRoot) + "org.example.shop/bin/Json.dll_deleted")),
            "/opt/usr/globalapps/org.example.shop/bin/Json.dll was deleted because "
            "/usr/share/dotnet.orvel/framework/Json.dll exists\n"
            "Remove /opt/usr/globalapps/org.example.shop/bin/Json.dll from OPK\n");
  EXPECT_TRUE(support::IsThere(package + "/bin/Json.dll")) << "the developer's own copy must stay";
}

TEST_F(InstallE2e, a_dll_of_a_component_is_kept_and_the_reason_told) {
  RunExpecting(0, {"install", Component()});
  const std::string package =
      MakePackage("shop", ManifestText("org.example.shop", "1"), {{"bin/Component.dll", "mine"}});
  EXPECT_THAT(RunExpecting(0, {"install", package}).out,
              HasSubstr("    kept     bin/Component.dll: duplicates "
                        "/opt/usr/globalapps/org.example.component/shared/res/Component.dll, whose copy is in the "
                        "read-write area\n"));
  EXPECT_TRUE(IsOnDevice("org.example.shop/bin/Component.dll"));
}

TEST_F(InstallE2e, a_component_gets_its_entries_in_both_cache_files) {
  const Result result = RunExpecting(0, {"install", Component()});
  EXPECT_THAT(result.out,
              HasSubstr("    TPA.txt  + /opt/usr/globalapps/org.example.component/shared/res/Component.dll\n"
                        "    CoBA.txt + /opt/usr/globalapps/org.example.component/shared/res/\n"
                        "    loader   restarted\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), "[START]:/opt/usr/globalapps/org.example.component/shared/res/Component.dll[END]");
  EXPECT_EQ(CacheFile("CoBA.txt"), "[START]:/opt/usr/globalapps/org.example.component/shared/res/[END]");
}

TEST_F(InstallE2e, a_package_of_another_kind_is_installed_and_said_to_be_left_alone) {
  const std::string package = MakePackage(
      "web", "<manifest package=\"org.example.web\"><ui-application appid=\"w\" type=\"webapp\"/></manifest>");
  EXPECT_THAT(RunExpecting(0, {"install", package}).out, HasSubstr("skipped  the plug-in did not take it"));
}

TEST_F(InstallE2e, a_debugged_package_with_duplicates_is_refused_explained_and_taken_back) {
  AddPlatformFile("netcoreapp/System.dll");
  const auto before = DeviceState();
  const Result result = RunExpecting(1, {"install", Debugged("1.0", {{"bin/System.dll", "x"}})});
  EXPECT_THAT(result.out, HasSubstr("not installed: org.example.debugged 1.0\n"
                                    "    INSTALL returned -1, UNDO returned 0\n"));
  EXPECT_THAT(result.out, HasSubstr("      bin/System.dll: the platform has "
                                    "/usr/share/dotnet.orvel/netcoreapp/System.dll\n"));
  EXPECT_THAT(result.out, HasSubstr("Duplicated DLL found. Please refer guide : http://"));
  EXPECT_THAT(result.err, HasSubstr("orvelbox: org.example.debugged: install failed, the package is under debugging"));
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "");
  EXPECT_EQ(DeviceState().size(), before.size()) << "nothing of the package may stay";
  EXPECT_FALSE(IsOnDevice("org.example.debugged"));
  EXPECT_FALSE(IsOnDevice(".staging"));
}

TEST_F(InstallE2e, a_debugged_package_without_duplicates_installs) {
  RunExpecting(0, {"install", Debugged("1.0", {{"bin/Own.dll", "x"}})});
  EXPECT_TRUE(IsOnDevice("org.example.debugged/bin/Own.dll"));
}

TEST_F(InstallE2e, an_upgrade_replaces_files_and_record) {
  RunExpecting(0, {"install", MakePackage("a1", ManifestText("org.example.a", "1.0"), {{"bin/Old.dll", "old"}})});
  const Result result =
      RunExpecting(0, {"upgrade", MakePackage("a2", ManifestText("org.example.a", "2.0"), {{"bin/New.dll", "new"}})});
  EXPECT_THAT(result.out, HasSubstr("upgraded org.example.a 1.0 to 2.0 (/opt/usr/globalapps/org.example.a)\n"
                                    "    UPGRADE returned 0, CLEAN returned 0\n"));
  EXPECT_FALSE(IsOnDevice("org.example.a/bin/Old.dll"));
  EXPECT_TRUE(IsOnDevice("org.example.a/bin/New.dll"));
  EXPECT_FALSE(IsOnDevice(".previous"));
  EXPECT_FALSE(IsOnDevice(".staging"));
  EXPECT_THAT(RunExpecting(0, {"list"}).out, HasSubstr("org.example.a  2.0  "));
}

TEST_F(InstallE2e, an_upgrade_of_a_component_moves_its_cache_entries_to_the_new_files) {
  RunExpecting(0, {"install", Component()});
  const std::string next = MakePackage("next", ManifestText("org.example.component", "2.0", CobaMetadata()),
                                       {{"shared/res/Renamed.dll", "component"}});
  const Result result = RunExpecting(0, {"upgrade", next});
  EXPECT_THAT(result.out, HasSubstr("+ /opt/usr/globalapps/org.example.component/shared/res/Renamed.dll\n"));
  EXPECT_THAT(result.out, HasSubstr("- /opt/usr/globalapps/org.example.component/shared/res/Component.dll\n"));
  EXPECT_EQ(CacheFile("TPA.txt"), "[START]:/opt/usr/globalapps/org.example.component/shared/res/Renamed.dll[END]");
}

TEST_F(InstallE2e, a_failed_upgrade_puts_the_version_before_back) {
  AddPlatformFile("netcoreapp/System.dll");
  RunExpecting(0, {"install", Debugged("1.0", {{"bin/Own.dll", "first"}})});
  const auto before = DeviceState();
  const std::string shown = RunExpecting(0, {"show", "org.example.debugged"}).out;
  const Result result = RunExpecting(1, {"upgrade", Debugged("2.0", {{"bin/System.dll", "x"}})});
  EXPECT_THAT(result.out, HasSubstr("not upgraded: org.example.debugged 1.0 to 2.0; the version before is in place "
                                    "again\n    UPGRADE returned -1, UNDO returned 0\n"));
  EXPECT_EQ(RunExpecting(0, {"show", "org.example.debugged"}).out, shown);
  auto after = DeviceState();
  EXPECT_EQ(after["root/opt/usr/globalapps/org.example.debugged/bin/Own.dll"], "first");
  EXPECT_EQ(after.size(), before.size());
}

TEST_F(InstallE2e, links_are_copied_as_links) {
  const std::string package = MakePackage("a", ManifestText("org.example.a", "1"));
  std::filesystem::create_symlink("nowhere/at/all", package + "/link");
  RunExpecting(0, {"install", package});
  EXPECT_EQ(std::filesystem::read_symlink(OnDesk(std::string(kRoot) + "org.example.a/link")), "nowhere/at/all");
}

TEST_F(InstallE2e, a_trace_file_holds_the_spans_of_the_hooks) {
  RunExpecting(0, {"--trace", dir_ / "trace.json", "install", MakePackage("a", ManifestText("org.example.a", "1"))});
  EXPECT_THAT(support::ReadFile(dir_ / "trace.json"), HasSubstr("PKGMGR_PARSER_PLUGIN_INSTALL"));
}

TEST_F(InstallE2e, the_device_option_reaches_the_plug_in) {
  environment_ = {{"ORVELBOX_DEVICE", dir_ / "elsewhere"}};
  RunExpecting(0, {"--device", device_.directory.string(), "install", Component()});
  EXPECT_EQ(CacheFile("CoBA.txt"), "[START]:/opt/usr/globalapps/org.example.component/shared/res/[END]");
}

TEST_F(InstallE2e, the_longest_package_id_installs_upgrades_and_goes) {
  const std::string id(255, 'x');
  RunExpecting(0, {"install", MakePackage("long", ManifestText(id, "1"))});
  RunExpecting(0, {"upgrade", MakePackage("long2", ManifestText(id, "2"))});
  RunExpecting(0, {"uninstall", id});
  EXPECT_FALSE(IsOnDevice(id));
}

}  // namespace
}  // namespace e2e
