// Extracting the facts of an operation from log records.

#include "orvelbox/history/log.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

host::LogRecord Error(const std::string& text) {
  return {"2026-11-21T08:00:00.123Z", 'E', "NETCORE_INSTALLER_PLUGIN", 1,
          "morvath: f(12) > \x1b[31m" + text + "\x1b[0m"};
}

host::LogRecord Information(const std::string& text) {
  return {"2026-11-21T08:00:00.123Z", 'I', "NETCORE_INSTALLER_PLUGIN", 1,
          "morvath: f(12) > \x1b[36m" + text + "\x1b[0m"};
}

std::vector<host::LogRecord> DuplicateRecords(const std::string& origin, const std::string& duplicated) {
  return {Error("### Duplicated DLL found ###"), Error("Origin : " + origin), Error("Duplicated : " + duplicated)};
}

void Append(std::vector<host::LogRecord>& records, const std::vector<host::LogRecord>& more) {
  records.insert(records.end(), more.begin(), more.end());
}

TEST(LogFacts, a_message_is_taken_out_of_its_wrapping) {
  const auto message = ParsePluginMessage("morvath: gac(7) > \x1b[36mGAC (x) > y\x1b[0m\n");
  ASSERT_TRUE(message);
  EXPECT_EQ(message->function, "gac");
  EXPECT_EQ(message->text, "GAC (x) > y");
}

TEST(LogFacts, another_programs_message_is_no_plug_in_message) {
  EXPECT_FALSE(ParsePluginMessage("just a text"));
  EXPECT_FALSE(ParsePluginMessage("a (b): c > d"));
  EXPECT_FALSE(ParsePluginMessage(""));
}

TEST(LogFacts, the_three_lines_of_a_duplicate_make_one_fact) {
  const LogFacts facts = InterpretLog(DuplicateRecords("/p/A.dll", "/a/A.dll"));
  ASSERT_EQ(facts.duplicates.size(), 1U);
  EXPECT_EQ(facts.duplicates[0].origin, "/p/A.dll");
  EXPECT_EQ(facts.duplicates[0].duplicated, "/a/A.dll");
  EXPECT_FALSE(facts.duplicates[0].origin_read_write);
  EXPECT_THAT(facts.errors, IsEmpty());
}

TEST(LogFacts, the_read_write_line_belongs_to_the_duplicate_before_it) {
  auto records = DuplicateRecords("/p/A.dll", "/a/A.dll");
  Append(records, {Error("Origin file is in RW area. so doesn't remove duplicate file")});
  Append(records, DuplicateRecords("/p/B.dll", "/a/B.dll"));
  const LogFacts facts = InterpretLog(records);
  ASSERT_EQ(facts.duplicates.size(), 2U);
  EXPECT_TRUE(facts.duplicates[0].origin_read_write);
  EXPECT_FALSE(facts.duplicates[1].origin_read_write);
}

TEST(LogFacts, a_file_that_was_found_twice_is_told_once) {
  auto records = DuplicateRecords("/p/A.dll", "/a/A.dll");
  Append(records, DuplicateRecords("/q/A.dll", "/a/A.dll"));
  const LogFacts facts = InterpretLog(records);
  ASSERT_EQ(facts.duplicates.size(), 1U);
  EXPECT_EQ(facts.duplicates[0].origin, "/q/A.dll");
}

TEST(LogFacts, guide_restart_and_other_errors_are_told_apart) {
  const LogFacts facts = InterpretLog({Error("Duplicated DLL found. Please refer guide : http://guide"),
                                       Error("Can't restart dotnet-loader-inhouse"), Error("lstat error.")});
  EXPECT_EQ(facts.guide, "Duplicated DLL found. Please refer guide : http://guide");
  EXPECT_TRUE(facts.restart_failed);
  EXPECT_THAT(facts.errors, ElementsAre("lstat error."));
}

TEST(LogFacts, texts_of_another_priority_are_no_errors) {
  auto records = DuplicateRecords("/p/A.dll", "/a/A.dll");
  for (auto& record : records) record.priority = 'D';
  const LogFacts facts = InterpretLog(records);
  EXPECT_THAT(facts.duplicates, IsEmpty());
  EXPECT_THAT(facts.errors, IsEmpty());
}

TEST(LogFacts, a_package_that_is_left_alone_is_noticed) {
  EXPECT_TRUE(InterpretLog({Information("### App type is not dotnet-inhouse ###")}).not_inhouse);
  EXPECT_FALSE(InterpretLog({Information("App is dotnet-*")}).not_inhouse);
}

TEST(LogFacts, lines_that_are_no_records_are_left_out) {
  const auto records = ParseLog("rubbish\n2026-11-21T08:00:00.123Z E TAG 4711 text\n\n");
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].text, "text");
}

}  // namespace
}  // namespace orvelbox
