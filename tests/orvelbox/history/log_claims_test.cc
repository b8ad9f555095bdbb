// What is not claimed: where lines are missing, or may belong to others.

#include "orvelbox/history/explain.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/told_log.h"

namespace orvelbox {
namespace {

constexpr const char* kJson = "/usr/share/dotnet.orvel/framework/Json.dll";
constexpr const char* kOne = "/opt/usr/globalapps/org.one/bin/Own.dll";
constexpr const char* kTwo = "/opt/usr/globalapps/org.two/bin/Own.dll";
constexpr const char* kLibraryOfOne = "/opt/usr/globalapps/org.one/lib/Own.dll";
constexpr const char* kLibraryOfTwo = "/opt/usr/globalapps/org.two/lib/Own.dll";

std::string StoryOf(const Lines& lines) {
  std::string story;
  for (const std::string& line : DescribeStory("LOG", FactsOf(lines))) story += line + "\n";
  return story;
}

class ErrorLines : public ToldLog {
 public:
  ErrorLines& Found() { return Error("### Duplicated DLL found ###"); }
  ErrorLines& Origin(const std::string& path) { return Error("Origin : " + path); }
  ErrorLines& Duplicated(const std::string& path) { return Error("Duplicated : " + path); }

 private:
  ErrorLines& Error(const std::string& text) {
    Say("isDuplicatedDll", "31", text);
    return *this;
  }
};

TEST(LogClaims, reports_of_two_processes_at_once_leave_the_origins_open) {
  ErrorLines log;
  log.Found().Origin(kLibraryOfOne).Found().Origin(kLibraryOfTwo).Duplicated(kOne);
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre(std::string("duplicate ") + kOne + " "));
  log.Found().Origin(kLibraryOfOne).Duplicated(kOne).Duplicated(kTwo);
  const std::string one = std::string("duplicate ") + kOne + " ";
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre(one, one, std::string("duplicate ") + kTwo + " "));
}

TEST(LogClaims, a_report_without_its_first_line_leaves_the_origin_open) {
  ErrorLines log;
  log.Origin(kLibraryOfTwo).Duplicated(kOne);
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre(std::string("duplicate ") + kOne + " "));
}

TEST(LogClaims, a_report_too_many_takes_back_the_origins_before_it) {
  ErrorLines log;
  log.Found().Origin(kLibraryOfTwo).Duplicated(kOne).Found().Origin(kJson).Duplicated("/opt/usr/apps/org.a/Json.dll");
  EXPECT_THAT(Told(FactsOf(log.lines())), Contains(std::string("duplicate ") + kOne + " " + kLibraryOfTwo));
  log.Duplicated(kTwo);
  EXPECT_THAT(Told(FactsOf(log.lines())), Contains(std::string("duplicate ") + kOne + " "));
}

TEST(LogClaims, a_report_without_its_first_line_leaves_those_before_it) {
  ErrorLines log;
  log.Found().Origin(kLibraryOfTwo).Duplicated(kOne).Origin(kJson).Duplicated(kTwo);
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre(std::string("duplicate ") + kOne + " " + kLibraryOfTwo,
                                                      std::string("duplicate ") + kTwo + " "));
}

TEST(LogClaims, a_line_about_the_read_write_area_may_have_been_dropped) {
  ToldLog log;
  log.Enter("INSTALL").Enter("gac").Duplicate(kLibraryOfOne, kOne).Exit("gac").Exit("INSTALL");
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre(std::string("duplicate ") + kOne + " " + kLibraryOfOne));
}

TEST(LogClaims, more_processes_than_are_kept_at_once_are_told_nevertheless) {
  FactReader reader;
  for (int process = 1; process <= 3000; ++process) {
    ToldLog log(std::to_string(process));
    for (const std::string& line : log.Say("f", "31", "lstat error.").lines()) reader.Read(line);
  }
  const LogFacts facts = reader.Take();
  EXPECT_EQ(facts.unread_from, 0U);
  EXPECT_EQ(facts.passes.size(), 3000U);
}

TEST(LogClaims, a_log_that_is_not_read_to_its_end_is_summed_up_as_one) {
  FactReader reader;
  const std::string text(60000, 'x');
  for (int i = 0; i < 400; ++i) reader.Read("morvath: f(1) > \x1b[31m" + std::to_string(i) + text + "\x1b[0m");
  EXPECT_GT(Summarize(reader.Take()).unread_from, 100U);
}

TEST(LogClaims, errors_of_one_process_are_not_called_mixed) {
  ToldLog log;
  log.Say("isDuplicatedDll", "31", "### Duplicated DLL found ###")
      .Say("isDuplicatedDll", "31", std::string("Origin : ") + kJson);
  log.Say("isDuplicatedDll", "31", "Duplicated : /opt/usr/apps/org.a/Json.dll");
  log.Say("removeFileAndLeaveInformationFile", "31", "Origin file is in RW area. so doesn't remove duplicate file");
  log.Say("isAppCoBARelated", "36", "App has CoBA metadata");
  const std::string story = StoryOf(log.lines());
  EXPECT_THAT(story, Not(HasSubstr("several processes")));
  EXPECT_THAT(story, HasSubstr("(priority D, tag QUARNEL)"));
}

TEST(LogClaims, the_loader_is_restarted_where_a_failure_would_be_seen) {
  const Lines lines = ToldLog()
                          .Enter("CLEAN")
                          .Enter("restartDotnetCandidateProcess")
                          .Exit("restartDotnetCandidateProcess")
                          .Exit("CLEAN")
                          .lines();
  EXPECT_THAT(Told(FactsOf(lines)), IsEmpty());
}

TEST(LogClaims, the_reason_of_a_failed_removal_and_the_guide_are_told) {
  const std::string dll = "/opt/usr/apps/org.a/Json.dll";
  ToldLog log;
  log.Enter("INSTALL").Enter("gac").Duplicate(kJson, dll, false,
                                              "Failed to remove " + dll + " : Read-only file system");
  log.Exit("gac").Say("PKGMGR_PARSER_PLUGIN_INSTALL", "31", "Duplicated DLL found. Please refer guide : http://g");
  log.Exit("INSTALL");
  const std::string story = StoryOf(log.lines());
  EXPECT_THAT(story, AllOf(HasSubstr("Read-only file system"), HasSubstr("see http://g")));
  EXPECT_THAT(StoryJson("LOG", FactsOf(log.lines())), HasSubstr("Read-only file system"));
}

TEST(LogClaims, a_cache_file_whose_old_text_was_not_removed_is_not_called_gone) {
  const std::string story =
      StoryOf(ToldLog().Say("f", "31", "Fail to write string to file - open error(Permission denied)").lines());
  EXPECT_THAT(story, HasSubstr("the cache file is gone, unless removing it failed"));
}

TEST(LogClaims, a_tag_that_is_missing_altogether_is_named) {
  const std::string comparison = std::string("### Duplicated Checker ### Origin : ") + kJson + ", Duplicated : ";
  const std::string dll = "/opt/usr/apps/org.a/Json.dll";
  ToldLog plugin;
  plugin.Say("isDuplicatedDll", "0", comparison + dll).Say("isDuplicatedDll", "31", "Duplicated : " + dll);
  plugin.Say("removeFileAndLeaveInformationFile", "31", "Origin file is in RW area. so doesn't remove duplicate file");
  EXPECT_THAT(StoryOf(plugin.lines()), AllOf(HasSubstr("(priority D, tag QUARNEL)"), Not(HasSubstr("several"))));
  EXPECT_THAT(StoryOf(ToldLog().Enter("UNDO").Exit("UNDO").lines()), HasSubstr("tag NETCORE_INSTALLER_PLUGIN"));
  EXPECT_THAT(StoryOf(ToldLog().Enter("UNDO").Say("f", "0", "name x").Exit("UNDO").lines()),
              Not(HasSubstr("tag NETCORE_INSTALLER_PLUGIN")));
}

TEST(LogClaims, an_upgrade_that_broke_off_is_told) {
  const Lines broken = ToldLog().Enter("REMOVED").Enter("UPGRADE").Exit("UPGRADE").Exit("REMOVED").lines();
  EXPECT_THAT(StoryOf(broken), HasSubstr("broke off before INSTALL"));
  const Lines whole = ToldLog().Enter("UPGRADE").Enter("INSTALL").Exit("INSTALL").Exit("UPGRADE").lines();
  EXPECT_THAT(StoryOf(whole), Not(HasSubstr("broke off")));
}

TEST(LogClaims, json_holds_times_and_what_was_not_read_as_numbers) {
  const LogFacts facts = FactsOf(ToldLog("7").Say("f", "31", "lstat error.").lines());
  EXPECT_THAT(StoryJson("LOG", facts), AllOf(HasSubstr("\"time\":\"2026-11-21T08:00:00.123Z\""),
                                             HasSubstr("\"unclear\":0"), HasSubstr("\"unread_from\":null")));
}

}  // namespace
}  // namespace orvelbox
