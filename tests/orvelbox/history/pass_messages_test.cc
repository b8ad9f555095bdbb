// What single messages within a pass are taken for.

#include "orvelbox/history/explain.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/told_log.h"

namespace orvelbox {
namespace {

using testing::SizeIs;

constexpr const char* kJson = "/usr/share/dotnet.orvel/framework/Json.dll";
constexpr const char* kDll = "/opt/usr/apps/org.a/bin/Json.dll";
constexpr const char* kOtherDll = "/opt/usr/apps/org.b/bin/Json.dll";

LogFacts FactsOf(const ToldLog& log) { return orvelbox::FactsOf(log.lines()); }

// The only pass.
Pass PassOf(const ToldLog& log) {
  const LogFacts facts = FactsOf(log);
  EXPECT_THAT(facts.passes, SizeIs(1));
  return facts.passes.at(0);
}

// The findings of the only pass, each as "NAME PATH ORIGIN LINE…".
Lines Told(const ToldLog& log) {
  Lines told;
  for (const Finding& finding : PassOf(log).findings) {
    std::string text = std::string(NameOf(finding.what)) + " " + finding.path + " " + finding.origin;
    for (const LineNumber line : finding.lines) text += " " + std::to_string(line);
    told.push_back(text);
  }
  return told;
}

// A log with what was said while INSTALL, and in it gac, were called.
class InstallLog : public ToldLog {
 public:
  InstallLog() { Enter("INSTALL").Enter("gac"); }
  InstallLog& Said(const std::string& text, const std::string& function = "gac") {
    Say(function, "36", text);
    return *this;
  }
  InstallLog& Compared(const std::string& origin, const std::string& dll) {
    return Said("### Duplicated Checker ### Origin : " + origin + ", Duplicated : " + dll, "isDuplicatedDll");
  }
};

TEST(PassMessages, a_pass_that_was_run_already_names_the_package) {
  const InstallLog log = InstallLog().Said("GAC already run for same pkgId (org.a)");
  EXPECT_THAT(Told(log), ElementsAre("run-already org.a  3"));
  EXPECT_EQ(FactsOf(log).passes[0].package, "org.a") << "without an end of the pass";
  EXPECT_THAT(Told(InstallLog().Said("GAC already run for same pkgId (org.a")), IsEmpty());
  EXPECT_EQ(PassOf(ToldLog().Say("gac", "36", "GAC already run for same pkgId (org.a)")).package, "")
      << "without a hook there may be several passes";
}

TEST(PassMessages, a_package_is_left_alone_for_the_reason_just_before) {
  const std::string left = "### App type is not dotnet-inhouse ###";
  EXPECT_THAT(Told(InstallLog().Said(left)), ElementsAre("left-alone   3"));
  EXPECT_THAT(Told(InstallLog().Said("### Is sample app ###").Said(left)), ElementsAre("sample   3 4"));
  EXPECT_THAT(Told(InstallLog().Said("### Is sample app ###").Said("other").Said(left)), ElementsAre("left-alone   5"));
  EXPECT_THAT(Told(InstallLog().Said("xml provided is null").Said(left)), ElementsAre("no-manifest   3"));
  ToldLog bare;
  bare.Say("f", "36", "### Is sample app ###").Say("f", "36", left).Say("f", "36", "xml provided is null");
  EXPECT_THAT(Told(bare.Say("f", "36", left)), ElementsAre("left-alone   2", "no-manifest   3", "left-alone   4"));
}

TEST(PassMessages, errors_are_known_by_their_colour_or_their_text) {
  for (const std::string text : {"error access cache path: /c", "Fail to write string to file - open error(x)",
                                 "Symbolic link is detected : /a", "remove from cache called for a",
                                 "add to cache called for a", "Error: Failed pkgmgrinfo_appinfo_metadata_filter_add",
                                 "package_info_create return error code : 1", "Failed to remove /a : busy"}) {
    EXPECT_THAT(Told(InstallLog().Said(text)), ElementsAre("error   3")) << text;
  }
  EXPECT_THAT(Told(InstallLog().Said("text")), IsEmpty());
  ToldLog log;
  EXPECT_THAT(Told(log.Say("f", "31", "text").Say("f", "31", "Duplicated DLL found. Please refer guide : g")),
              ElementsAre("error   1", "refused   2"));
}

TEST(PassMessages, a_message_behind_the_end_of_a_pass_belongs_to_another) {
  ToldLog log;
  const LogFacts facts = FactsOf(log.Enter("CLEAN").Exit("CLEAN").Say("f", "31", "text"));
  ASSERT_THAT(facts.passes, SizeIs(2));
  EXPECT_THAT(facts.passes[0].findings, IsEmpty());
  EXPECT_THAT(facts.passes[1].findings, SizeIs(1));
  ToldLog tools;
  tools.Enter("CLEAN").Exit("CLEAN").Say("f", "31", "of a launcher's tool", "quarnel_util");
  EXPECT_THAT(PassOf(tools).findings, IsEmpty());
}

TEST(PassMessages, the_last_eight_comparisons_tell_the_origin) {
  for (const int others : {7, 8}) {
    InstallLog log;
    log.Compared(kJson, kDll);
    for (int i = 0; i < others; ++i) log.Compared(kJson, kOtherDll);
    log.Said(std::string("Duplicated : ") + kDll);
    const LogFacts facts = FactsOf(log);
    EXPECT_THAT(facts.passes.at(0).findings, SizeIs(others == 7 ? 1 : 0));
    EXPECT_EQ(facts.unclear_lines, others == 7 ? 0U : 1U);
  }
}

TEST(PassMessages, an_origin_is_an_absolute_path_with_the_name_of_the_duplicate) {
  for (const std::string origin : {"Json.dll", "/framework/Other.dll", "/framework/Json.txt"}) {
    EXPECT_THAT(Told(InstallLog().Compared(origin, kDll).Said(std::string("Duplicated : ") + kDll)), IsEmpty());
  }
  EXPECT_THAT(Told(InstallLog().Compared(kJson, kDll).Said("Duplicated : bin/Json.dll")), IsEmpty());
  EXPECT_THAT(Told(InstallLog().Compared(kJson, kDll).Said(std::string("Duplicated : ") + kDll)),
              ElementsAre(std::string("duplicate ") + kDll + " " + kJson + " 3 4"));
}

TEST(PassMessages, a_dll_is_exempt_because_of_itself_or_of_its_origin) {
  const std::string exempt = std::string("exempt ") + kDll + " " + kJson + " 3 4";
  const auto told = [](const std::string& path, const std::string& function) {
    return Told(InstallLog().Compared(kJson, kDll).Said("Is DPC DLL " + path, function));
  };
  EXPECT_THAT(told(kDll, "isDuplicatedDll"), ElementsAre(exempt));
  EXPECT_THAT(told(kJson, "isDuplicatedDll"), ElementsAre(exempt));
  EXPECT_THAT(told(kOtherDll, "isDuplicatedDll"), IsEmpty());
  EXPECT_THAT(told(kDll, "isDPCDll"), IsEmpty());
  EXPECT_THAT(Told(InstallLog()
                       .Compared(kJson, kDll)
                       .Compared("Json.dll", kDll)
                       .Said("### Duplicated Checker ### Origin : x")
                       .Said(std::string("Is DPC DLL ") + kDll, "isDuplicatedDll")),
              ElementsAre(std::string("exempt ") + kDll + " " + kJson + " 3 6"));
}

TEST(PassMessages, a_search_that_found_nothing_is_told) {
  const auto searched = [](const std::string& said) {
    InstallLog log;
    log.Enter("HasPlatformPrivilege").Exit("HasPlatformPrivilege");
    if (!said.empty()) log.Said(said);
    log.Exit("gac").Exit("INSTALL");
    return Told(log);
  };
  EXPECT_THAT(searched(""), ElementsAre("no-duplicates   3 5 6"));
  EXPECT_THAT(Told(InstallLog().Exit("gac").Exit("INSTALL")), IsEmpty()) << "no search was begun";
  EXPECT_THAT(searched("text"), ElementsAre("no-duplicates   3 6 7"));
  EXPECT_THAT(searched("### Duplicated DLL found ###"), IsEmpty());
  EXPECT_THAT(searched(std::string("Origin : ") + kJson), IsEmpty());
  EXPECT_THAT(searched("GAC already run for same pkgId (org.a)"), ElementsAre("run-already org.a  5"));
}

TEST(PassMessages, a_pass_about_two_packages_is_tangled) {
  const auto named = [](const std::string& first, const std::string& second) {
    InstallLog log;
    for (const std::string& package : {first, second}) {
      log.Said("add to cache called for " + package + ", but pkgroot is empty!");
    }
    log.Exit("gac").Exit("INSTALL");
    const Pass pass = PassOf(log);
    return pass.package + (pass.tangled ? " tangled" : "");
  };
  EXPECT_EQ(named("org.a", "org.a"), "org.a");
  EXPECT_EQ(named("org.a", "org.b"), " tangled");
  EXPECT_EQ(PassOf(InstallLog().Said("remove from cache called for a, but pkgroot is empty!")).package, "a");
  EXPECT_EQ(PassOf(InstallLog().Said("remove from cache called for a")).package, "");
}

TEST(PassMessages, a_function_that_is_not_called_there_tangles_the_pass) {
  EXPECT_FALSE(PassOf(ToldLog().Enter("INSTALL").Enter("gac").Enter("other")).tangled);
  EXPECT_TRUE(PassOf(ToldLog().Enter("INSTALL").Enter("isAppCoBARelated")).tangled);
  EXPECT_TRUE(PassOf(ToldLog().Enter("gac")).tangled);
}

TEST(PassMessages, the_end_of_a_function_that_is_not_the_innermost_tangles_the_pass) {
  EXPECT_FALSE(PassOf(ToldLog().Enter("INSTALL").Enter("gac").Exit("gac").Exit("INSTALL")).tangled);
  EXPECT_TRUE(PassOf(ToldLog().Enter("INSTALL").Enter("gac").Exit("INSTALL")).tangled);
  EXPECT_TRUE(PassOf(ToldLog().Enter("INSTALL").Exit("gac").Exit("INSTALL")).tangled);
}

TEST(PassMessages, more_than_64_functions_at_a_time_tangle_the_pass) {
  ToldLog log;
  log.Enter("INSTALL");
  for (int i = 1; i < 64; ++i) log.Enter("other");
  EXPECT_FALSE(PassOf(log).tangled);
  log.Enter("other");
  EXPECT_TRUE(PassOf(log).tangled);
}

TEST(PassMessages, functions_of_others_say_nothing_of_the_pass) {
  InstallLog log;
  log.Say("FunctionEntryExitTracker", "90", " +DotNETLog:other(38) int gac(const char*)", "log");
  log.Exit("gac").Exit("INSTALL");
  EXPECT_FALSE(PassOf(log).tangled);
  EXPECT_EQ(FactsOf(log).unclear_lines, 0U);
}

TEST(PassMessages, the_read_write_line_and_a_failure_are_told_where_no_removal_is_known) {
  ToldLog bare;
  bare.Say("removeFileAndLeaveInformationFile", "31", "Origin file is in RW area. so doesn't remove duplicate file");
  EXPECT_THAT(Told(bare), ElementsAre("kept   1"));
  EXPECT_FALSE(PassOf(bare).tangled);
  InstallLog inside;
  inside.Said("Origin file is in RW area. so doesn't remove duplicate file");
  EXPECT_TRUE(PassOf(inside).tangled);
  const std::string other = std::string("Failed to remove ") + kOtherDll + " : busy";
  InstallLog log;
  log.Duplicate(kJson, kDll, false, other);
  EXPECT_THAT(Told(log), ElementsAre(std::string("duplicate ") + kDll + " " + kJson + " 4 7", "error   10"));
}

}  // namespace
}  // namespace orvelbox
