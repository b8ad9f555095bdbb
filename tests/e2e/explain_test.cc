// orvelbox explain on the device's log, and on files that came off other devices.
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/framework/Json.dll";

class ExplainE2e : public HookDesk {
 protected:
  std::string Written(const std::string& text) const {
    support::WriteFile(dir_ / "tv.log", text);
    return dir_ / "tv.log";
  }
};

TEST_F(ExplainE2e, the_devices_log_is_told_package_by_package) {
  InstallShop();
  const std::string out = RunExpecting(0, {"explain"}).out;
  EXPECT_THAT(out, ContainsRegex("\nlines [0-9]+-[0-9]+: INSTALL of org.example.shop \\(process [0-9]+\\)\n"));
  EXPECT_THAT(out,
              ContainsRegex(std::string("    removed   bin/Json.dll: the platform has ") + kOrigin + " \\(lines "));
  EXPECT_THAT(out, ContainsRegex("    kept      bin/Part.dll: it duplicates [^ ]*/Part.dll, and that copy lies in the "
                                 "read-write area \\(lines "));
  EXPECT_THAT(out, ContainsRegex("    CoBA.txt  written \\(lines .*\n    loader    restarted \\(lines "));
}

TEST_F(ExplainE2e, a_refused_install_and_a_package_that_is_none_of_ours_say_why) {
  AddPlatformFile("framework/Json.dll");
  RunExpecting(1,
               {"install", MakePackage("debugged", ManifestText("org.example.debugged", "1", "", DebuggingPrivileges()),
                                       {{"Json.dll", "x"}})});
  EXPECT_THAT(RunExpecting(0, {"explain"}).out, ContainsRegex("    refused   .*under debugging.* \\(line [0-9]+\\)\n"));
  support::WriteFile(device_.Log(), "");
  RunExpecting(0, {"install", MakePackage("native",
                                          "<manifest package=\"org.example.native\" version=\"1\">"
                                          "<ui-application appid=\"c\" exec=\"c\" type=\"capp\"/></manifest>")});
  EXPECT_THAT(RunExpecting(0, {"explain"}).out,
              ContainsRegex("    skipped   it was not taken for .*\"dotnet-\" application \\(line "));
}

TEST_F(ExplainE2e, json_holds_the_same) {
  InstallShop();
  const auto json = host::ParseJson(RunExpecting(0, {"explain", "--json"}).out);
  EXPECT_EQ(json["log"], device_.Log().string());
  ASSERT_EQ(json["passes"].size(), 4U);
  const auto& pass = json["passes"][2];
  EXPECT_EQ(pass["event"], "INSTALL");
  EXPECT_EQ(pass["package"], "org.example.shop");
  EXPECT_EQ(pass["findings"][0]["what"], "removed");
  EXPECT_EQ(pass["findings"][0]["origin"], kOrigin);
  EXPECT_EQ(pass["findings"][1]["what"], "kept");
  EXPECT_GE(pass["findings"][0]["lines"].size(), 4U);
  EXPECT_EQ(pass["unknown"].size(), 0U);
}

TEST_F(ExplainE2e, a_file_needs_no_device) {
  const std::string log = Written(
      "E/NETCORE_INSTALLER_PLUGIN( 7): morvath: isDuplicatedDll(90) > ### Duplicated DLL found ###\r\n"
      "E/NETCORE_INSTALLER_PLUGIN( 7): morvath: isDuplicatedDll(91) > Origin : "
      "/usr/share/dotnet.orvel/framework/X.dll\r\n"
      "E/NETCORE_INSTALLER_PLUGIN( 7): morvath: isDuplicatedDll(92) > Duplicated : /opt/usr/apps/org.a/X.dll");
  fs::remove_all(device_.directory);
  const std::string out = RunExpecting(0, {"explain", log}).out;
  EXPECT_THAT(
      out,
      HasSubstr("    duplicate org.a X.dll: the platform has /usr/share/dotnet.orvel/framework/X.dll (lines 1-3)\n"));
  EXPECT_THAT(out, HasSubstr("    unknown   which hooks were called"));
  EXPECT_THAT(out, HasSubstr("    unknown   whether a duplicate went"));
}

TEST_F(ExplainE2e, a_log_that_says_nothing_is_told_as_one) {
  for (const std::string& text : {std::string(), std::string("some line\n"), std::string(3000, '\0')}) {
    EXPECT_THAT(RunExpecting(0, {"explain", Written(text)}).out, ContainsRegex("^unknown   anything at all: .*tv.log"));
  }
}

TEST_F(ExplainE2e, what_a_name_holds_reaches_no_terminal) {
  const std::string log = Written("morvath: isDuplicatedDll(92) > Duplicated : /opt/usr/apps/org.a/\x1b[2J.dll\n");
  EXPECT_THAT(RunExpecting(0, {"explain", log}).out, HasSubstr("org.a \\x1b[2J.dll"));
}

TEST_F(ExplainE2e, what_is_no_readable_file_is_refused) {
  EXPECT_THAT(RunExpecting(1, {"explain", dir_ / "none"}).err, HasSubstr("none: cannot read: No such file"));
  EXPECT_THAT(RunExpecting(1, {"explain", dir_.path().string()}).err, HasSubstr("cannot read: Is a directory"));
}

}  // namespace
}  // namespace e2e
