// orvelbox check as a user runs it: sources of the platform, verdicts, formats, exit statuses, and nothing changed.
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "tests/support/assembly.h"
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"
#include "tests/support/zip.h"

namespace e2e {
namespace {

constexpr const char* kPlatform = "/usr/share/dotnet.orvel/";

class CheckE2e : public Desk {
 protected:
  std::string Shop(const std::map<std::string, std::string>& files, const std::string& application = "",
                   const std::string& package = "") const {
    return MakePackage("shop", ManifestText("org.example.shop", "1", application, package), files);
  }

  // The verdicts of a check in JSON as "VERDICT PATH ORIGIN".
  std::vector<std::string> Verdicts(int status, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"check", "--format", "json"});
    const auto json = host::ParseJson(RunExpecting(status, arguments).out);
    std::vector<std::string> verdicts;
    for (const auto& dll : json["dlls"]) {
      verdicts.push_back(dll["verdict"].get<std::string>() + " " + dll["path"].get<std::string>() + " " +
                         dll.value("origin", ""));
    }
    return verdicts;
  }

  void MakePlatform(const std::vector<std::string>& files) const {
    for (const std::string& file : files) support::WriteFile(dir_.path() / "tv" / file, "the platform's");
  }
};

TEST_F(CheckE2e, tells_what_would_go_and_changes_nothing) {
  AddPlatformFile("framework/Json.dll");
  const auto before = DeviceState();
  const std::string log = support::ReadFile(device_.Log());
  const std::string package = Shop({{"bin/Json.dll", "x"}, {"bin/Own.dll", "y"}});
  const Result result = RunExpecting(1, {"check", package});
  EXPECT_THAT(result.out, StartsWith(package + ": org.example.shop 1: of 2 DLLs 1 would be removed"));
  EXPECT_THAT(result.out, HasSubstr("\n    removed  bin/Json.dll  1     14        " + std::string(kPlatform) +
                                    "framework/Json.dll\n    kept     bin/Own.dll\n"));
  EXPECT_THAT(result.out, HasSubstr("<PackageReference Update=\"Json\" ExcludeAssets=\"runtime\" />"));
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(DeviceState(), before);
  EXPECT_EQ(support::ReadFile(device_.Log()), log);
  EXPECT_EQ(support::ReadFile(package + "/bin/Json.dll"), "x");
}

TEST_F(CheckE2e, a_package_without_duplicates_ends_with_0) {
  EXPECT_THAT(Verdicts(0, {Shop({{"bin/Own.dll", "y"}})}), ElementsAre("kept bin/Own.dll "));
}

TEST_F(CheckE2e, a_directory_of_assemblies_takes_the_place_of_the_device) {
  MakePlatform({"netcoreapp/Core.dll", "d.pc/deep/Dpc.dll", "tvappapi/Api.dll"});
  const std::string package = Shop({{"Core.dll", ""}, {"Dpc.dll", ""}, {"Api.dll", ""}});
  EXPECT_THAT(Verdicts(1, {"--platform", dir_ / "tv", package}),
              ElementsAre("kept Api.dll ", "removed Core.dll " + std::string(kPlatform) + "netcoreapp/Core.dll",
                          "kept Dpc.dll " + std::string(kPlatform) + "d.pc/deep/Dpc.dll"));
  EXPECT_THAT(Verdicts(1, {"--platform", dir_ / "tv", package, "--privilege", "platform"})[0],
              "removed Api.dll " + std::string(kPlatform) + "tvappapi/Api.dll");
}

TEST_F(CheckE2e, a_list_of_paths_gives_the_same_verdicts_as_the_directory) {
  MakePlatform({"netcoreapp/Core.dll", "netcoreapp/sub/Deep.dll", "framework/F.dll", "framework/First.dll",
                "d.pc/a/Dpc.dll", "d.pc/a/b/No.dll", "tvappapi/Api.dll"});
  const std::string package =
      Shop({{"Core.dll", ""}, {"Deep.dll", ""}, {"F.dll", ""}, {"Dpc.dll", ""}, {"No.dll", ""}, {"Api.dll", ""}});
  const std::string byte_order_mark = "\xef\xbb\xbf";
  std::string list = byte_order_mark + kPlatform + "framework/First.dll\n# find\n";
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir_ / "tv")) {
    list += kPlatform + entry.path().lexically_relative(dir_ / "tv").string() + "\r\n";
  }
  support::WriteFile(dir_ / "tv.txt", list + "/etc/unrelated\n");
  for (const std::vector<std::string>& more : {std::vector<std::string>{}, {"--privilege", "platform"}}) {
    std::vector<std::string> by_directory = {"--platform", dir_ / "tv", package};
    std::vector<std::string> by_list = {"--platform", dir_ / "tv.txt", package};
    by_directory.insert(by_directory.end(), more.begin(), more.end());
    by_list.insert(by_list.end(), more.begin(), more.end());
    EXPECT_EQ(Verdicts(1, by_list), Verdicts(1, by_directory));
  }
}

TEST_F(CheckE2e, coba_packages_count_from_the_list_and_from_the_command_line) {
  support::WriteFile(dir_ / "tv.txt",
                     std::string(kPlatform) + "framework/F.dll\n/opt/usr/globalapps/a/shared/res/A.dll\n");
  const std::string other = MakePackage("b", ManifestText("b", "1", CobaMetadata()), {{"shared/res/B.dll", "b"}});
  EXPECT_THAT(Verdicts(1, {"--platform", dir_ / "tv.txt", "--coba", other, Shop({{"A.dll", ""}, {"B.dll", ""}})}),
              ElementsAre("reported A.dll /opt/usr/globalapps/a/shared/res/A.dll",
                          "reported B.dll /opt/usr/globalapps/b/shared/res/B.dll"));
}

TEST_F(CheckE2e, versions_of_both_copies_are_told_and_newer_ones_warned_of) {
  support::WriteFile(OnDesk(kPlatform) + "framework/Json.dll", support::AssemblyOf({12, 0, 0, 0}));
  const std::string package = Shop({{"bin/Json.dll", support::AssemblyOf({13, 0, 0, 1})}});
  const std::string out = RunExpecting(1, {"check", package}).out;
  EXPECT_THAT(out, HasSubstr("  13.0.0.1  "));
  EXPECT_THAT(out, HasSubstr("  12.0.0.0 "));
  EXPECT_THAT(out, HasSubstr("warning: bin/Json.dll (13.0.0.1) is newer than the copy that decides (12.0.0.0)"));
}

TEST_F(CheckE2e, what_is_named_like_a_dll_but_is_no_file_is_told_so) {
  const std::string package = Shop({});
  ASSERT_EQ(mkfifo((package + "/Pipe.dll").c_str(), 0600), 0);
  std::filesystem::create_symlink("nowhere", package + "/Link.dll");
  const std::string out = RunExpecting(0, {"check", package}).out;
  EXPECT_THAT(out, HasSubstr("Link.dll  (only regular files count)"));
  EXPECT_THAT(out, HasSubstr("Pipe.dll  (only regular files count)"));
}

TEST_F(CheckE2e, an_archive_is_checked_like_its_directory) {
  AddPlatformFile("framework/Json.dll");
  const std::string assembly = support::AssemblyOf({1, 2, 3, 4});
  support::WriteFile(dir_ / "shop.opk", support::ZipOf({{"orvel-manifest.xml", ManifestText("org.example.shop", "1")},
                                                        {"bin/Json.dll", assembly},
                                                        {"bin/big.bin", std::string(100000, 'x')}}));
  std::filesystem::create_directory(dir_ / "tmp");
  environment_["TMPDIR"] = dir_ / "tmp";
  const auto json = host::ParseJson(RunExpecting(1, {"check", "--format", "json", dir_ / "shop.opk"}).out);
  EXPECT_EQ(json["dlls"][0]["verdict"], "removed");
  EXPECT_EQ(json["dlls"][0]["assembly_version"], "1.2.3.4");
  EXPECT_THAT(support::NamesIn(dir_ / "tmp"), IsEmpty());
}

TEST_F(CheckE2e, many_packages_give_one_line_each_in_their_order) {
  AddPlatformFile("framework/Json.dll");
  std::vector<std::string> arguments = {"check", "--format", "json", "--jobs", "3"};
  for (int i = 0; i < 12; ++i) {
    const std::string name = "p" + std::to_string(i);
    arguments.push_back(MakePackage(name, ManifestText(name, "1"), {{i % 2 == 0 ? "Json.dll" : "Own.dll", ""}}));
  }
  int count = 0;
  for (const std::string& line : support::Lines(RunExpecting(1, arguments).out)) {
    const auto json = host::ParseJson(line);
    EXPECT_EQ(json["id"], "p" + std::to_string(count));
    EXPECT_EQ(json["duplicates"], count++ % 2 == 0 ? 1 : 0);
  }
  EXPECT_EQ(count, 12);
}

TEST_F(CheckE2e, an_unreadable_package_is_named_and_the_others_are_checked) {
  AddPlatformFile("framework/Json.dll");
  const std::string package = Shop({{"Json.dll", ""}});
  const Result result = RunExpecting(2, {"check", "--format", "json", dir_ / "nowhere", package});
  EXPECT_THAT(result.err, StartsWith("orvelbox: " + (dir_ / "nowhere") + ": no such directory; "));
  const auto refused = host::ParseJson(support::Lines(result.out).at(0));
  EXPECT_EQ(refused["package"], dir_ / "nowhere");
  EXPECT_TRUE(refused.contains("error"));
  EXPECT_THAT(result.out, HasSubstr("\"duplicates\":1"));
}

TEST_F(CheckE2e, msbuild_lines_name_files_and_say_each_thing_once) {
  AddPlatformFile("framework/Json.dll");
  const std::string package = Shop({{"Json.dll", ""}});
  const Result result = RunExpecting(2, {"check", "--format", "msbuild", package, dir_ / "nowhere"});
  EXPECT_EQ(result.out, package + "/Json.dll: warning ORVEL1001: Json.dll duplicates " + kPlatform +
                            "framework/Json.dll; the install removes it.\n" + (dir_ / "nowhere") +
                            ": error ORVEL1003: no such directory; name the directory or the archive of a package\n");
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(RunExpecting(2, {"check", "--format", "msbuild", "--platform", dir_ / "no.txt", package}).out,
            (dir_ / "no.txt") +
                ": error ORVEL1003: no such file or directory; name a list file or a directory of platform "
                "assemblies\n");
}

TEST_F(CheckE2e, what_makes_it_fail_can_be_chosen) {
  AddPlatformFile("framework/Json.dll");
  const std::string package = Shop({{"Json.dll", ""}});
  RunExpecting(1, {"check", "--fail-on", "warning", package});
  RunExpecting(0, {"check", "--fail-on", "error", package});
  RunExpecting(1, {"check", "--fail-on", "error", "--privilege", "appdebugging", package});
}

TEST_F(CheckE2e, sarif_is_one_document) {
  AddPlatformFile("framework/Json.dll");
  const auto log = host::ParseJson(RunExpecting(1, {"check", "--format", "sarif", Shop({{"Json.dll", ""}})}).out);
  EXPECT_EQ(log["runs"][0]["results"].size(), 1U);
  const std::string uri = log["runs"][0]["results"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"];
  EXPECT_THAT(uri, AllOf(StartsWith("file:///"), EndsWith("/packages/shop/Json.dll")));
}

TEST_F(CheckE2e, bad_sources_are_named_with_the_way_out) {
  const std::string package = Shop({});
  support::WriteFile(dir_ / "relative.txt", "usr/share/x.dll\n");
  support::WriteFile(dir_ / "up.txt", std::string(kPlatform) + "../../etc/passwd\n");
  support::WriteFile(dir_ / "none.txt", "/etc/passwd\n");
  support::WriteFile(dir_ / "twice.txt", std::string(kPlatform) +
                                             "framework/F.dll\n/opt/usr/globalapps/a/shared/res/A.dll\n"
                                             "/opt/a/shared/res/shared/res/A.dll\n");
  std::filesystem::create_directory(dir_ / "empty");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"relative.txt", "relative.txt: line 1 (\"usr/share/x.dll\") is no plain absolute path; "},
      {"up.txt", "up.txt: line 1"},
      {"none.txt", "none.txt: names no assemblies below /usr/share/dotnet.orvel; "},
      {"empty", "empty: no platform assemblies; "},
      {"twice.txt", "twice.txt: names the package a twice, in /opt/a and in /opt/usr/globalapps/a; "},
      {"nowhere", "nowhere: no such file or directory; "},
      {std::string(300, 'x'), "xxx: no such file or directory; "}};
  for (const auto& [source, text] : cases) {
    const Result result = RunExpecting(2, {"check", "--platform", dir_ / source, package});
    EXPECT_THAT(result.err, AllOf(StartsWith("orvelbox: "), HasSubstr(text)));
    EXPECT_EQ(result.out, "");
  }
  EXPECT_THAT(RunExpecting(2, {"check", "--coba", package, package}).err, HasSubstr(": is no CoBA package"));
  EXPECT_THAT(RunExpecting(2, {"--device", dir_ / "empty", "check", package}).err, HasSubstr(": no device there"));
}

TEST_F(CheckE2e, an_answer_that_cannot_be_written_is_no_answer) {
  AddPlatformFile("framework/Json.dll");
  const std::string check = "{ " ORVELBOX_PROGRAM " --device " + support::Quoted(device_.directory) + " check " +
                            support::Quoted(Shop({{"Json.dll", ""}})) + " --format ";
  for (const std::string format : {"table", "json", "sarif", "msbuild"}) {
    EXPECT_EQ(format + ": " + support::OutputOf(check + format + " >/dev/full; echo $?; }"),
              format + ": orvelbox: standard output cannot be written\n2\n");
  }
}

TEST_F(CheckE2e, a_hangup_that_is_ignored_interrupts_nothing) {
  ASSERT_EQ(mkfifo((dir_ / "tv.txt").c_str(), 0600), 0);
  // The list comes from a pipe, so that the signal is there before the check begins.
  const std::string check = "list=" + support::Quoted(dir_ / "tv.txt") +
                            "; (trap '' HUP; exec " ORVELBOX_PROGRAM " check --platform \"$list\" " +
                            support::Quoted(Shop({})) + ") & sleep 0.2; kill -HUP $!; echo " + kPlatform +
                            "framework/Json.dll >\"$list\"; wait $!";
  EXPECT_THAT(support::OutputOf(check), AllOf(HasSubstr(": no DLLs"), Not(HasSubstr("interrupted"))));
}

TEST_F(CheckE2e, wrong_usage_ends_with_2) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"check"}, {"check", "--format", "xml", "p"}, {"check", "--jobs", "0", "p"}}) {
    const Result result = RunExpecting(2, arguments);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("orvelbox: "));
  }
  EXPECT_THAT(RunExpecting(2, {"--device", "d", "check", "--platform", "tv", "p"}).err,
              HasSubstr("orvelbox: --platform and --device exclude each other; name what to check against once"));
  EXPECT_THAT(RunExpecting(2, {"check", "--privilege", "bogus", "p"}).err,
              HasSubstr("bogus: no privilege; write its URI, or \"platform\" or \"appdebugging\""));
  EXPECT_THAT(RunExpecting(2, {"check", "--format", "xml", "p"}).err, HasSubstr("{table,json,sarif,msbuild}"));
}

}  // namespace
}  // namespace e2e
