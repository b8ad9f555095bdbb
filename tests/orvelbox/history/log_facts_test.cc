// Reading the facts of logs out of lines of any form.

#include "orvelbox/history/log_facts.h"

#include "orvelbox/history/log_message.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/told_log.h"

namespace orvelbox {
namespace {

using testing::SizeIs;

constexpr const char* kJson = "/usr/share/dotnet.orvel/framework/Json.dll";
constexpr const char* kOwnJson = "/opt/usr/globalapps/org.example.shop/bin/Json.dll";
constexpr const char* kPart = "/opt/usr/globalapps/org.example.component/shared/res/Part.dll";
constexpr const char* kOwnPart = "/opt/usr/globalapps/org.example.shop/bin/Part.dll";

Lines Only(const Lines& lines, const std::string& part) {
  Lines some;
  for (const std::string& line : lines) {
    if (line.find(part) != std::string::npos) some.push_back(line);
  }
  return some;
}

Lines Installed() {
  return ToldLog().Enter("INSTALL").Enter("gac").Duplicate(kJson, kOwnJson).Exit("gac").Exit("INSTALL").lines();
}

TEST(LogMessages, a_message_is_found_whatever_stands_before_it) {
  for (const std::string prefix : {"", "11-22 04:10:00.123+0900 E/NETCORE_INSTALLER_PLUGIN (P 12, T 12): ",
                                   "[  12.3] (a: b(c) > ", "<30>Nov 22 04:10:00 tv installer[7]: ", "\xe2\x98\xba "}) {
    const LogMessage message = ReadLogLine(prefix + "morvath: gac(7) > \x1b[36mGAC (x) > y\x1b[0m\r");
    EXPECT_EQ(message.kind, LogMessage::Kind::kOurs) << prefix;
    EXPECT_EQ(message.unit + " " + message.function + " " + message.text, "morvath gac GAC (x) > y");
  }
}

TEST(LogMessages, colours_may_be_spelled_or_gone) {
  for (const std::string escape : {"\x1b", "\\e", "\\x1b", "\\033", "#033", "^["}) {
    const LogMessage message = ReadLogLine("morvath: f(7) > " + escape + "[31mtext" + escape + "[0m");
    EXPECT_EQ(message.text, "text") << escape;
    EXPECT_TRUE(message.error) << escape;
  }
  EXPECT_EQ(ReadLogLine("morvath: f(7) > text").text, "text");
}

TEST(LogMessages, a_desks_record_tells_time_and_process) {
  const LogMessage message = ReadLogLine("2026-11-21T08:00:00.123Z I TAG 4711 morvath: f(7) > \\e[36ma\\\\b\\e[0m");
  EXPECT_EQ(message.time + " " + message.process + " " + message.text, "2026-11-21T08:00:00.123Z 4711 a\\b");
}

TEST(LogMessages, other_lines_are_foreign_and_broken_ones_of_ours_damaged) {
  using Kind = LogMessage::Kind;
  for (const std::string line : {"", "just a text", "a (b): c > d", "f(7) > text", "\xff\xfe", "unit: f(x) > y"}) {
    EXPECT_EQ(ReadLogLine(line).kind, Kind::kForeign) << line;
  }
  const std::string_view word = "aa7) > text";
  EXPECT_EQ(ReadLogLine(word.substr(2)).kind, Kind::kForeign) << "what stands before a line is none of it";
  for (const std::string line : {"morvath: gac(7", "morvath: gac(7) > \x1b[36mcut", "E/QUARNEL: \xff"}) {
    EXPECT_EQ(ReadLogLine(line).kind, Kind::kDamaged) << line;
  }
  EXPECT_EQ(ReadLogLine(std::string("morvath: f(7) > a\0b", 19)).kind, Kind::kDamaged);
  EXPECT_EQ(ReadLogLine("morvath: f(7) > a", false).kind, Kind::kDamaged);
}

TEST(LogFacts, a_pass_is_told_with_its_lines) {
  const LogFacts facts = FactsOf(Installed());
  ASSERT_THAT(facts.passes, SizeIs(1));
  const Pass& pass = facts.passes[0];
  EXPECT_EQ(pass.event + " of " + pass.package, "INSTALL of org.example.shop");
  EXPECT_TRUE(pass.begun && pass.ended && !pass.tangled);
  ASSERT_THAT(pass.findings, SizeIs(1));
  EXPECT_EQ(pass.findings[0].what, What::kRemoved);
  EXPECT_EQ(pass.findings[0].path + " " + pass.findings[0].origin, std::string(kOwnJson) + " " + kJson);
  EXPECT_THAT(pass.findings[0].lines, ElementsAre(4, 7, 8, 9, 10));
}

TEST(LogFacts, the_read_write_line_belongs_to_the_removal_around_it) {
  const LogFacts facts = FactsOf(ToldLog()
                                     .Enter("INSTALL")
                                     .Enter("gac")
                                     .Duplicate(kPart, kOwnPart, true)
                                     .Duplicate(kJson, kOwnJson)
                                     .Exit("gac")
                                     .Exit("INSTALL")
                                     .lines());
  ASSERT_THAT(facts.passes.at(0).findings, SizeIs(2));
  EXPECT_EQ(facts.passes[0].findings[0].what, What::kStays);
  EXPECT_EQ(facts.passes[0].findings[1].what, What::kRemoved);
}

TEST(LogFacts, a_failed_removal_is_one) {
  const std::string failed = std::string("Failed to remove ") + kOwnJson + " : Read-only file system";
  const LogFacts facts = FactsOf(ToldLog()
                                     .Enter("INSTALL")
                                     .Enter("gac")
                                     .Duplicate(kJson, kOwnJson, false, failed)
                                     .Exit("gac")
                                     .Exit("INSTALL")
                                     .lines());
  ASSERT_THAT(facts.passes.at(0).findings, SizeIs(1));
  EXPECT_EQ(facts.passes[0].findings[0].what, What::kRemovalFailed);
  EXPECT_THAT(Summarize(facts).errors, ElementsAre(failed));
}

TEST(LogFacts, without_debug_lines_a_duplicate_is_known_but_not_what_became_of_it) {
  const LogFacts facts = FactsOf(Only(Installed(), "[31m"));
  ASSERT_THAT(facts.passes.at(0).findings, SizeIs(1));
  EXPECT_EQ(facts.passes[0].findings[0].what, What::kDuplicate);
  EXPECT_EQ(facts.passes[0].findings[0].origin, kJson);
  EXPECT_FALSE(facts.passes[0].begun || facts.passes[0].ended);
}

TEST(LogFacts, two_passes_at_once_are_told_apart_by_nothing) {
  const Lines lines = ToldLog().Enter("INSTALL").Enter("gac").Enter("INSTALL").Duplicate(kJson, kOwnJson).lines();
  const LogFacts facts = FactsOf(lines);
  ASSERT_THAT(facts.passes, SizeIs(1));
  EXPECT_TRUE(facts.passes[0].tangled);
  EXPECT_EQ(facts.passes[0].event + facts.passes[0].package, "");
  ASSERT_THAT(facts.passes[0].findings, SizeIs(1));
  EXPECT_EQ(facts.passes[0].findings[0].what, What::kDuplicate);
  EXPECT_EQ(facts.passes[0].findings[0].origin, kJson);
}

TEST(LogFacts, processes_of_a_desk_are_told_apart) {
  const std::string other = "/opt/usr/globalapps/org.example.other/Json.dll";
  const Lines one =
      ToldLog("11").Enter("INSTALL").Enter("gac").Duplicate(kJson, kOwnJson).Exit("gac").Exit("INSTALL").lines();
  const Lines two =
      ToldLog("12").Enter("INSTALL").Enter("gac").Duplicate(kJson, other).Exit("gac").Exit("INSTALL").lines();
  Lines both;
  for (std::size_t i = 0; i < one.size(); ++i) both.insert(both.end(), {one[i], two[i]});
  const LogFacts facts = FactsOf(both);
  ASSERT_THAT(facts.passes, SizeIs(2));
  EXPECT_EQ(facts.passes[0].package + " " + facts.passes[1].package, "org.example.shop org.example.other");
  EXPECT_EQ(facts.passes[1].findings.at(0).what, What::kRemoved);
}

TEST(LogFacts, a_process_that_begins_anew_has_left_the_pass_before) {
  const LogFacts facts = FactsOf(ToldLog("11").Enter("INSTALL").Enter("gac").Enter("INSTALL").Exit("INSTALL").lines());
  ASSERT_THAT(facts.passes, SizeIs(2));
  EXPECT_FALSE(facts.passes[0].ended);
  EXPECT_EQ(facts.passes[1].event, "INSTALL");
}

TEST(LogFacts, the_end_of_an_outer_hook_whose_begin_is_gone_leaves_open_what_was_before) {
  const LogFacts facts =
      FactsOf(ToldLog().Enter("INSTALL").Exit("INSTALL").Exit("UPGRADE").Exit("REMOVED").Enter("UNDO").lines());
  ASSERT_THAT(facts.passes, SizeIs(3));
  EXPECT_TRUE(facts.passes[0].tangled && facts.passes[1].tangled);
  EXPECT_EQ(facts.passes[0].event + facts.passes[1].event, "");
  EXPECT_FALSE(facts.passes[2].tangled);
}

TEST(LogFacts, caches_and_loader_are_told_by_their_lines) {
  const std::string tpa = "/opt/usr/home/owner/share/dotnet/TPA.txt";
  ToldLog log;
  log.Enter("UNINSTALL").Enter("removedPkgFromTPACacheFile").Enter("readCacheAndRemovePkg");
  log.Say("readCacheAndRemovePkg", "36", "erase: :/a/B.dll from cache file: " + tpa).Exit("readCacheAndRemovePkg");
  log.Say("writeStringToFile", "0", "Save File : " + tpa, "platform_utils");
  log.Say("writeStringToFile", "0", "Saved", "platform_utils").Exit("removedPkgFromTPACacheFile");
  log.Enter("restartDotnetCandidateProcess").Exit("restartDotnetCandidateProcess");
  log.Enter("restartDotnetCandidateProcess");
  log.Say("restartDotnetCandidateProcess", "31", "Can't restart dotnet-loader-inhouse");
  log.Exit("restartDotnetCandidateProcess").Exit("UNINSTALL");
  std::vector<What> whats;
  const LogFacts facts = FactsOf(log.lines());
  for (const Finding& finding : facts.passes.at(0).findings) whats.push_back(finding.what);
  EXPECT_THAT(whats, ElementsAre(What::kErased, What::kWritten, What::kRestarted, What::kNotRestarted));
  EXPECT_EQ(facts.passes[0].findings[0].origin, "/a/B.dll");
}

TEST(LogFacts, guide_restart_and_other_errors_are_told_apart) {
  const LogSummary summary =
      Summarize(FactsOf(ToldLog()
                            .Say("f", "31", "Duplicated DLL found. Please refer guide : http://g")
                            .Say("f", "31", "Can't restart dotnet-loader-inhouse")
                            .Say("f", "31", "lstat error.")
                            .Say("f", "0", "no error")
                            .lines()));
  EXPECT_EQ(summary.guide, "Duplicated DLL found. Please refer guide : http://g");
  EXPECT_TRUE(summary.restart_failed);
  EXPECT_THAT(summary.errors, ElementsAre("lstat error."));
}

TEST(LogFacts, a_file_that_was_found_twice_is_summed_up_once) {
  const std::string other = "/usr/share/dotnet.orvel/netcoreapp/Json.dll";
  const LogSummary summary =
      Summarize(FactsOf(ToldLog().Duplicate(kJson, kOwnJson).Duplicate(other, kOwnJson).lines()));
  ASSERT_THAT(summary.duplicates, SizeIs(1));
  EXPECT_EQ(summary.duplicates[0].origin, other);
}

TEST(LogFacts, a_package_that_is_left_alone_is_noticed) {
  EXPECT_TRUE(
      Summarize(FactsOf(ToldLog().Say("f", "36", "### App type is not dotnet-inhouse ###").lines())).not_inhouse);
  EXPECT_FALSE(Summarize(FactsOf(ToldLog().Say("f", "36", "App is dotnet-*").lines())).not_inhouse);
}

TEST(LogFacts, errors_of_the_desk_itself_are_summed_up) {
  EXPECT_THAT(Summarize(FactsOf({"rubbish", "2026-11-21T08:00:00.123Z E TAG 4711 text", ""})).errors,
              ElementsAre("text"));
}

TEST(LogFacts, endless_logs_end_the_reader_not_the_program) {
  FactReader reader;
  const std::string text(60000, 'x');
  const ToldLog hook = ToldLog().Enter("CLEAN");
  for (int i = 0; i < 1500; ++i) {
    reader.Read(hook.lines().front());
    reader.Read("morvath: f(1) > \x1b[31m" + std::to_string(i) + text + "\x1b[0m");
  }
  const LogFacts facts = reader.Take();
  EXPECT_EQ(facts.lines, 3000U);
  EXPECT_GT(facts.unread_from, 100U);
}

TEST(LogFacts, a_package_is_found_in_a_path) {
  EXPECT_EQ(PackageRootIn(kOwnJson), "/opt/usr/globalapps/org.example.shop");
  EXPECT_EQ(PackageRootIn("/opt/usr/apps/org.myapps/bin/X.dll"), "/opt/usr/apps/org.myapps");
  EXPECT_EQ(PackageRootIn("/data/org.myapps/bin/X.dll"), "");
  EXPECT_EQ(PackageRootIn("/opt/usr/apps/X.dll"), "");
}

}  // namespace
}  // namespace orvelbox
