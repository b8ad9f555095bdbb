// The parts of a check: its facts as JSON, its words, its project lines, its SARIF log.
#include <nlohmann/json.hpp>

#include "orvelbox/check/check.h"
#include "orvelbox/check/result.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "platform/host/json.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/uris.h"

namespace orvelbox {
namespace {

constexpr const char* kFramework = "/usr/share/dotnet.orvel/framework/";

CheckedDll Dll(const std::string& path, Verdict verdict, const std::string& origin) {
  CheckedDll dll;
  dll.path = path;
  dll.verdict = verdict;
  dll.origin = origin;
  return dll;
}

CheckedPackage Package(std::vector<CheckedDll> dlls) {
  CheckedPackage package;
  package.name = "shop.opk";
  package.id = "org.example.shop";
  package.version = "1.0";
  package.root = "/opt/usr/globalapps/org.example.shop";
  package.dotnet = true;
  package.dlls = std::move(dlls);
  return package;
}

CheckedDll NewerDll() {
  CheckedDll dll = Dll("bin/Json.dll", Verdict::kRemoved, std::string(kFramework) + "Json.dll");
  dll.own = {20, AssemblyVersion{2, 0, 0, 0}};
  dll.provided = {10, AssemblyVersion{1, 9, 0, 0}};
  return dll;
}

std::string JsonOf(const CheckedPackage& package) {
  std::string text;
  WriteJson(package, [&](std::string_view part) { text += part; });
  return text;
}

Lines Described(const CheckedPackage& package) {
  Lines lines;
  DescribeCheck(package, [&](const std::string& line) { lines.push_back(line); });
  return lines;
}

TEST(CheckJson, says_everything_in_one_line) {
  CheckedPackage package = Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, "")});
  package.dlls[1].reason = "because";
  package.debugging = true;
  const std::string line = JsonOf(package);
  EXPECT_THAT(line, Not(HasSubstr("\n")));
  EXPECT_THAT(line, HasSubstr(R"("duplicates":1)"));
  EXPECT_THAT(line, HasSubstr(R"("newer_than_origin":true)"));
  const auto read = host::ParseJson(line);
  EXPECT_EQ(read["package"], "shop.opk");
  EXPECT_EQ(read["debugging"], true);
  EXPECT_EQ(read["dlls"][0]["verdict"], "removed");
  EXPECT_EQ(read["dlls"][0]["assembly_version"], "2.0.0.0");
  EXPECT_EQ(read["dlls"][0]["origin_assembly_version"], "1.9.0.0");
  EXPECT_EQ(read["dlls"][0]["origin_size"], 10);
  EXPECT_EQ(read["dlls"][1]["reason"], "because");
}

TEST(CheckJson, a_problem_takes_the_place_of_the_facts) {
  CheckedPackage package;
  package.name = "a\xff\x1b";
  package.problem = "gone";
  EXPECT_EQ(JsonOf(package), "{\"package\":\"a\\ufffd\\u001b\",\"error\":\"gone\"}");
}

TEST(CheckTable, has_a_row_for_every_dll_and_warns_of_newer_ones) {
  const Lines lines = Described(Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, "")}));
  EXPECT_EQ(lines[0],
            "shop.opk: org.example.shop 1.0: of 2 DLLs 1 would be removed, 0 reported but kept (read-write area), "
            "1 kept");
  EXPECT_EQ(lines[1], "    VERDICT  DLL           SIZE  VERSION  ITS SIZE  ITS VERSION  BECAUSE OF");
  EXPECT_EQ(lines[2],
            "    removed  bin/Json.dll  20    2.0.0.0  10        1.9.0.0      "
            "/usr/share/dotnet.orvel/framework/Json.dll");
  EXPECT_EQ(lines[3], "    kept     bin/Own.dll");
  EXPECT_EQ(lines[4],
            "    warning: bin/Json.dll (2.0.0.0) is newer than the copy that decides (1.9.0.0); by its name it is a "
            "duplicate all the same");
}

TEST(CheckTable, tells_when_an_install_would_fail) {
  CheckedPackage package = Package({NewerDll()});
  EXPECT_THAT(Described(package), Not(Contains(HasSubstr("would fail"))));
  package.debugging = true;
  EXPECT_THAT(Described(package), Contains(HasSubstr("Its install would fail")));
  package.dlls.clear();
  EXPECT_THAT(Described(package), ElementsAre("shop.opk: org.example.shop 1.0: no DLLs"));
}

Lines MsbuildOf(const CheckedPackage& package) {
  Lines lines;
  WriteMsbuild(package, [&](const std::string& line) { lines.push_back(line); });
  return lines;
}

TEST(CheckMsbuild, has_a_line_for_every_duplicate) {
  CheckedPackage package = Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, ""),
                                    Dll("lib/B.dll", Verdict::kReportedOnly, "/opt/other/B.dll")});
  const std::string removed =
      ": bin/Json.dll (2.0.0.0) duplicates /usr/share/dotnet.orvel/framework/Json.dll (1.9.0.0); the install removes "
      "it. The package's copy is the newer one; by its name it is a duplicate all the same.";
  const std::string reported = ": lib/B.dll duplicates /opt/other/B.dll; the install reports it but keeps it.";
  EXPECT_THAT(MsbuildOf(package),
              ElementsAre("shop.opk: warning ORVEL1001" + removed, "shop.opk: warning ORVEL1002" + reported));
  package.debugging = true;
  const std::string fails = " The package is under debugging, so its install fails.";
  EXPECT_THAT(MsbuildOf(package), ElementsAre("shop.opk: error ORVEL1001" + removed + fails,
                                              "shop.opk: error ORVEL1002" + reported + fails));
}

TEST(CheckMsbuild, a_problem_is_an_error_of_its_own) {
  CheckedPackage package = Package({});
  EXPECT_THAT(MsbuildOf(package), IsEmpty());
  package.problem = "shop.opk: gone";
  EXPECT_THAT(MsbuildOf(package), ElementsAre("shop.opk: error ORVEL1003: gone"));
}

TEST(TextTable, columns_are_as_wide_as_their_characters_and_empty_ones_left_out) {
  TextTable table({"A", "EMPTY", "B"});
  table.Measure({"größer", "", "1"});
  table.Measure({"x", "", "2"});
  EXPECT_EQ(table.Headings(), "A       B");
  EXPECT_EQ(table.Line({"größer", "", "1"}), "größer  1");
  EXPECT_EQ(table.Line({"x", "", "2"}), "x       2");
}

Lines ProjectLines(const CheckedPackage& package) {
  Lines lines;
  WriteProjectLines(package, [&](const std::string& line) { lines.push_back(line); });
  return lines;
}

TEST(ProjectLines, name_each_provided_dll_once_and_escape_it) {
  const CheckedPackage package =
      Package({Dll("bin/A&B.dll", Verdict::kRemoved, std::string(kFramework) + "A&B.dll"),
               Dll("res/A&B.dll", Verdict::kRemoved, std::string(kFramework) + "A&B.dll"),
               Dll("bin/It's.dll", Verdict::kReportedOnly, "/opt/other/It's.dll"),
               Dll("bin/a;%(b).dll", Verdict::kRemoved, std::string(kFramework) + "a;%(b).dll"),
               Dll("bin/Kept.dll", Verdict::kKept, "")});
  const std::vector<std::string> lines = ProjectLines(package);
  EXPECT_EQ(
      std::count(lines.begin(), lines.end(), "  <PackageReference Update=\"A&amp;B\" ExcludeAssets=\"runtime\" />"), 1);
  EXPECT_THAT(lines, Contains(HasSubstr("'A&amp;B.dll'")));
  EXPECT_THAT(lines, Contains(HasSubstr("'It%27s.dll'")));
  EXPECT_THAT(lines, Contains(HasSubstr("Update=\"a%3B%25(b)\"")));
  EXPECT_THAT(lines, Not(Contains(HasSubstr("Kept"))));
}

TEST(ProjectLines, a_copy_in_the_package_itself_is_no_matter_of_the_project_file) {
  CheckedPackage package = Package({});
  package.dlls.push_back(Dll("bin/A.dll", Verdict::kReportedOnly, package.root + "/lib/A.dll"));
  EXPECT_THAT(ProjectLines(package), IsEmpty());
}

std::string ToSarif(const std::vector<CheckedPackage>& packages) {
  std::string text;
  SarifLog log([&](const std::string& line) { text += line; });
  for (const CheckedPackage& package : packages) log.Add(package);
  log.End();
  return text;
}

TEST(CheckSarif, keeps_no_result_until_the_end) {
  std::vector<std::string> lines;
  SarifLog log([&](const std::string& line) { lines.push_back(line); });
  for (std::size_t packages = 1; packages <= 3; ++packages) {
    log.Add(Package({NewerDll()}));
    ASSERT_EQ(lines.size(), 1 + packages);
    EXPECT_THAT(lines.back(), HasSubstr("bin/Json.dll (2.0.0.0) duplicates"));
  }
}

TEST(CheckSarif, has_a_result_per_duplicate_and_a_notification_per_unreadable_package) {
  CheckedPackage unreadable;
  unreadable.name = "b c.opk";
  unreadable.problem = "damaged";
  CheckedPackage debugged = Package({Dll("bin/X.dll", Verdict::kReportedOnly, "/opt/x/X.dll")});
  debugged.debugging = true;
  const auto log =
      host::ParseJson(ToSarif({Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, "")}), unreadable, debugged}));
  EXPECT_EQ(log["version"], "2.1.0");
  const auto& run = log["runs"][0];
  ASSERT_EQ(run["results"].size(), 2U);
  const auto& result = run["results"][0];
  EXPECT_EQ(result["ruleId"], run["tool"]["driver"]["rules"][0]["id"]);
  EXPECT_EQ(result["level"], "warning");
  EXPECT_THAT(result["message"]["text"].get<std::string>(), HasSubstr("bin/Json.dll (2.0.0.0) duplicates"));
  EXPECT_EQ(result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"], "shop.opk");
  EXPECT_EQ(run["results"][1]["ruleId"], run["tool"]["driver"]["rules"][1]["id"]);
  EXPECT_EQ(run["results"][1]["level"], "error");
  const auto& invocation = run["invocations"][0];
  EXPECT_EQ(invocation["executionSuccessful"], false);
  EXPECT_EQ(invocation["toolExecutionNotifications"][0]["locations"][0]["physicalLocation"]["artifactLocation"]["uri"],
            "b%20c.opk");
}

TEST(ProgressBar, fills_up) {
  EXPECT_EQ(ProgressBar("checking", 0, 4), "checking [" + std::string(30, ' ') + "] 0 of 4");
  EXPECT_EQ(ProgressBar("checking", 2, 4), "checking [" + std::string(15, '#') + std::string(15, ' ') + "] 2 of 4");
  EXPECT_EQ(ProgressBar("checking", 4, 4), "checking [" + std::string(30, '#') + "] 4 of 4");
}

TEST(Privilege, short_names_are_those_at_the_ends_of_the_uris) {
  EXPECT_EQ(PrivilegeUri("platform"), support::kPlatformPrivilege);
  EXPECT_EQ(PrivilegeUri("appdebugging"), support::kDebuggingPrivilege);
  EXPECT_EQ(PrivilegeUri("http://x/y"), "http://x/y");
  EXPECT_THROW(PrivilegeUri("bogus"), std::invalid_argument);
}

}  // namespace
}  // namespace orvelbox
