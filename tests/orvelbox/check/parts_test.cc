// The parts of a check: its facts as JSON, its words, its project lines, its SARIF log.
#include <nlohmann/json.hpp>

#include "orvelbox/check/result.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "platform/host/json.h"
#include "tests/orvelbox/frame.h"

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

Lines ProjectLines(const CheckedPackage& package) {
  Lines lines;
  WriteProjectLines(package, [&](const std::string& line) { lines.push_back(line); });
  return lines;
}

TEST(CheckJson, says_everything_in_one_line) {
  CheckedPackage package = Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, "")});
  package.dlls[1].reason = "because";
  package.debugging = true;
  std::string project_lines;
  for (const std::string& line : ProjectLines(package)) {
    project_lines += (project_lines.empty() ? "" : ",") + host::AsciiJson(line);
  }
  EXPECT_EQ(
      JsonOf(package),
      R"({"package":"shop.opk","id":"org.example.shop","version":"1.0","root":"/opt/usr/globalapps/org.example.shop",)"
      R"("dotnet":true,"debugging":true,"duplicates":1,"dlls":[{"path":"bin/Json.dll","verdict":"removed",)"
      R"("origin":"/usr/share/dotnet.orvel/framework/Json.dll","size":20,"assembly_version":"2.0.0.0",)"
      R"("origin_size":10,"origin_assembly_version":"1.9.0.0","newer_than_origin":true},)"
      R"({"path":"bin/Own.dll","verdict":"kept","reason":"because"}],"project_lines":[)" +
          project_lines + "]}");
  package.dlls.clear();
  EXPECT_THAT(JsonOf(package), testing::EndsWith(R"(,"duplicates":0,"dlls":[]})"));
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

TEST(ProjectLines, name_each_provided_dll_once_and_escape_it) {
  const CheckedPackage package =
      Package({Dll("bin/A&B.dll", Verdict::kRemoved, std::string(kFramework) + "A&B.dll"),
               Dll("res/A&B.dll", Verdict::kRemoved, std::string(kFramework) + "A&B.dll"),
               Dll("bin/X's.dll", Verdict::kReportedOnly, "/opt/other/X's.dll"),
               Dll("bin/a;%($@*?b).dll", Verdict::kRemoved, std::string(kFramework) + "a;%($@*?b).dll"),
               Dll("bin/Kept.dll", Verdict::kKept, "")});
  const std::string copy = "    <ReferenceCopyLocalPaths Remove=\"@(ReferenceCopyLocalPaths)\"";
  const std::string named = "        Condition=\"'%(Filename)%(Extension)' == '";
  EXPECT_THAT(ProjectLines(package),
              testing::ElementsAreArray(
                  Lines{"<!-- DLLs that come with a package of their name -->", "<ItemGroup>",
                        "  <PackageReference Update=\"A&amp;B\" ExcludeAssets=\"runtime\" />",
                        "  <PackageReference Update=\"X%27s\" ExcludeAssets=\"runtime\" />",
                        "  <PackageReference Update=\"a%3B%25(%24%40%2A%3Fb)\" ExcludeAssets=\"runtime\" />",
                        "</ItemGroup>", "<!-- DLLs that come in any other way -->",
                        "<Target Name=\"LeaveProvidedAssembliesOut\" AfterTargets=\"ResolveAssemblyReferences\">",
                        "  <ItemGroup>", copy, named + "A&amp;B.dll'\" />", copy, named + "X%27s.dll'\" />", copy,
                        named + "a%3B%25(%24%40%2A%3Fb).dll'\" />", "  </ItemGroup>", "</Target>"}));
}

TEST(ProjectLines, a_copy_in_the_package_itself_is_no_matter_of_the_project_file) {
  CheckedPackage package = Package({});
  package.dlls.push_back(Dll("bin/A.dll", Verdict::kReportedOnly, package.root + "/lib/A.dll"));
  EXPECT_THAT(ProjectLines(package), IsEmpty());
}

constexpr const char* kSarifBegin =
    R"({"$schema":"https://json.schemastore.org/sarif-2.1.0.json","version":"2.1.0","runs":[{"tool":{"driver":)"
    R"({"name":"orvelbox check","rules":[{"id":"duplicate-removed","shortDescription":{"text":"A DLL of the package )"
    R"(is provided already; the install removes it."},"help":{"text":"Keep the DLL out of the package; orvelbox check )"
    R"(prints the lines for the project file. Guide: )" ORVEL_GUIDE_URL R"("}},{"id":"duplicate-reported",)"
    R"("shortDescription":{"text":"A DLL of the package is provided in the read-write area; the install reports it )"
    R"(and keeps it."},"help":{"text":"Keep the DLL out of the package; orvelbox check prints the lines for the )"
    R"(project file. Guide: )" ORVEL_GUIDE_URL R"("}}]}},"results":[)";

std::string SarifResult(const std::string& rule, const std::string& level, const std::string& message,
                        const std::string& dll) {
  return R"({"ruleId":")" + rule + R"(","level":")" + level + R"(","message":{"text":")" + message +
         R"("},"locations":[{"physicalLocation":{"artifactLocation":{"uri":"shop.opk"}},"logicalLocations":)"
         R"([{"fullyQualifiedName":"org.example.shop/)" +
         dll + R"(","kind":"resource"}]}]})";
}

std::string SarifNotification(const std::string& text, const std::string& uri) {
  return R"({"level":"error","message":{"text":")" + text +
         R"("},"locations":[{"physicalLocation":{"artifactLocation":{"uri":")" + uri + R"("}}}]})";
}

// What was said after each package, and after the end.
class SaidSarif {
 public:
  std::string After(const CheckedPackage& package) {
    log_.Add(package);
    return std::exchange(said_, "");
  }
  std::string AfterEnd() {
    log_.End();
    return said_;
  }

 private:
  std::string said_;
  SarifLog log_{[this](const std::string& line) { said_ += line; }};
};

TEST(CheckSarif, has_a_result_per_duplicate_and_keeps_none_until_the_end) {
  SaidSarif sarif;
  const std::string removed =
      SarifResult("duplicate-removed", "warning", MessageAbout(Package({}), NewerDll()), "bin/Json.dll");
  const CheckedDll reported = Dll("bin/X.dll", Verdict::kReportedOnly, "/opt/x/X.dll");
  EXPECT_EQ(sarif.After(Package({NewerDll(), Dll("bin/Own.dll", Verdict::kKept, "")})), kSarifBegin + removed);
  EXPECT_EQ(sarif.After(Package({reported})),
            "," + SarifResult("duplicate-reported", "note", MessageAbout(Package({}), reported), "bin/X.dll"));
  CheckedPackage debugged = Package({reported});
  debugged.debugging = true;
  EXPECT_EQ(sarif.After(debugged),
            "," + SarifResult("duplicate-reported", "error", MessageAbout(debugged, reported), "bin/X.dll"));
  EXPECT_EQ(sarif.AfterEnd(), R"(],"invocations":[{"executionSuccessful":true,"toolExecutionNotifications":[]}]}]})");
}

TEST(CheckSarif, has_a_notification_per_unreadable_package) {
  SaidSarif sarif;
  CheckedPackage unreadable;
  unreadable.name = "b c.opk";
  unreadable.problem = "damaged";
  EXPECT_EQ(sarif.After(unreadable), kSarifBegin);
  unreadable.name = "/d-._~/\xc3\xa9";
  EXPECT_EQ(sarif.After(unreadable), "");
  EXPECT_EQ(sarif.AfterEnd(), R"(],"invocations":[{"executionSuccessful":false,"toolExecutionNotifications":[)" +
                                  SarifNotification("damaged", "b%20c.opk") + "," +
                                  SarifNotification("damaged", "file:///d-._~/%C3%A9") + "]}]}]}");
}

TEST(ProgressBar, fills_up) {
  EXPECT_EQ(ProgressBar("checking", 0, 4), "checking [" + std::string(30, ' ') + "] 0 of 4");
  EXPECT_EQ(ProgressBar("checking", 2, 4), "checking [" + std::string(15, '#') + std::string(15, ' ') + "] 2 of 4");
  EXPECT_EQ(ProgressBar("checking", 4, 4), "checking [" + std::string(30, '#') + "] 4 of 4");
}

}  // namespace
}  // namespace orvelbox
