// The device's log and the library that writes it.
#include "platform/host/log_file.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <map>

#include "orvel/dlog.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

using testing::MatchesRegex;

std::vector<std::string> LinesOf(const std::filesystem::path& file) { return support::Lines(ReadFile(file)); }

class LogFile : public DirectoryTest {
 protected:
  std::filesystem::path file() const { return directory() / "log"; }
  // The last record in the log.
  host::LogRecord Last() const { return host::ParseLogRecord(LinesOf(file()).back()).value(); }
};

TEST_F(LogFile, a_record_has_time_priority_tag_pid_and_text) {
  ASSERT_TRUE(host::AppendLogRecord(file(), 'E', "TAG", "some text\n"));
  EXPECT_THAT(ReadFile(file()),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3}Z E TAG " +
                           std::to_string(getpid()) + " some text\n"));
}

TEST_F(LogFile, a_record_comes_back_as_it_was_logged) {
  ASSERT_TRUE(host::AppendLogRecord(file(), 'I', "a tag\n", " \x1b[31mred\x1b[0m\nsecond line\\n \xff\n"));
  const auto record = Last();
  EXPECT_EQ('I', record.priority);
  EXPECT_EQ("a tag\n", record.tag);
  EXPECT_EQ(getpid(), record.pid);
  EXPECT_EQ(" \x1b[31mred\x1b[0m\nsecond line\\n \xff", record.text);
}

TEST_F(LogFile, empty_tag_and_text_come_back) {
  ASSERT_TRUE(host::AppendLogRecord(file(), 'D', "", ""));
  EXPECT_EQ("", Last().tag);
  EXPECT_EQ("", Last().text);
}

TEST_F(LogFile, only_the_line_feed_that_ends_the_message_is_dropped) {
  ASSERT_TRUE(host::AppendLogRecord(file(), 'D', "T", "text\n\n"));
  EXPECT_EQ("text\n", Last().text);
}

TEST_F(LogFile, no_message_forges_a_record) {
  const std::string forged = "2026-11-21T08:00:00.123Z E OTHER 1 forged";
  ASSERT_TRUE(host::AppendLogRecord(file(), 'D', "T\n" + forged + "\n", "x\n" + forged + "\r\n" + forged));
  EXPECT_EQ(1u, LinesOf(file()).size());
  EXPECT_EQ("x\n" + forged + "\r\n" + forged, Last().text);
}

TEST_F(LogFile, concurrent_writers_tear_no_record) {
  constexpr int kWriters = 4;
  constexpr int kRecords = 200;
  for (int writer = 0; writer < kWriters; ++writer) {
    if (fork() != 0) continue;
    const std::string text(static_cast<size_t>(3000 + writer), static_cast<char>('a' + writer));
    for (int i = 0; i < kRecords; ++i) host::AppendLogRecord(file(), 'D', "T", text);
    _exit(0);
  }
  while (wait(nullptr) > 0) continue;
  std::map<size_t, int> records;
  for (const auto& line : LinesOf(file())) {
    const auto record = host::ParseLogRecord(line);
    ASSERT_TRUE(record) << line;
    ASSERT_EQ(std::string(record->text.size(), record->text[0]), record->text);
    ++records[record->text.size()];
  }
  EXPECT_EQ((std::map<size_t, int>{{3000, kRecords}, {3001, kRecords}, {3002, kRecords}, {3003, kRecords}}), records);
}

TEST_F(LogFile, what_cannot_be_written_is_told) {
  EXPECT_FALSE(host::AppendLogRecord("/dev/full", 'D', "T", "text"));
  EXPECT_FALSE(host::AppendLogRecord(file() / "below", 'D', "T", "text"));
}

TEST(LogRecordLine, other_lines_are_no_records) {
  const std::string good = "2026-11-21T08:00:00.123Z E TAG 4711 text";
  ASSERT_TRUE(host::ParseLogRecord(good));
  for (const char* line :
       {"", "text", "2026-11-21T08:00:00.123Z E TAG 4711", "2026-11-21 08:00:00.123Z E TAG 4711 text",
        "2026-11-21T08:00:00.12aZ E TAG 4711 text", "2026-11-21T08:00:00.123Z X TAG 4711 text",
        "2026-11-21T08:00:00.123Z EE TAG 4711 text", "2026-11-21T08:00:00.123Z E TAG 47x text",
        "2026-11-21T08:00:00.123Z E TAG -1 text", "2026-11-21T08:00:00.123Z E TAG  text",
        "2026-11-21T08:00:00.123Z E TAG 99999999999999999999 text", "2026-11-21T08:00:00.123Z E TAG 4711 \\q",
        "2026-11-21T08:00:00.123Z E T\\ 4711 text"}) {
    EXPECT_FALSE(host::ParseLogRecord(line)) << line;
  }
}

TEST(LogPriority, has_a_letter) {
  EXPECT_EQ('D', host::PriorityLetter(DLOG_DEBUG));
  EXPECT_EQ('I', host::PriorityLetter(DLOG_INFO));
  EXPECT_EQ('E', host::PriorityLetter(DLOG_ERROR));
  for (const int other : {-1, 0, 1, 2, 5, 7, 8, 1000}) EXPECT_EQ('?', host::PriorityLetter(other)) << other;
}

TEST(LogLibrary, a_message_becomes_a_record_of_the_device) {
  const samples::EnvironmentDevice device;
  EXPECT_EQ(11, __dlog_print(DLOG_MAIN, DLOG_INFO, "TAG", "%s-%d%c", "number", 123, '\n'));
  const auto record = host::ParseLogRecord(LinesOf(device.device().Log()).at(0)).value();
  EXPECT_EQ('I', record.priority);
  EXPECT_EQ("TAG", record.tag);
  EXPECT_EQ("number-123", record.text);
}

TEST(LogLibrary, a_long_message_is_logged_whole) {
  const samples::EnvironmentDevice device;
  const std::string text(1'000'000, 'x');
  EXPECT_EQ(1'000'000, __dlog_print(DLOG_MAIN, DLOG_ERROR, "TAG", "%s", text.c_str()));
  EXPECT_EQ(text, host::ParseLogRecord(LinesOf(device.device().Log()).at(0)).value().text);
}

TEST(LogLibrary, without_a_device_messages_are_dropped) {
  unsetenv(host::kDeviceVariable);
  EXPECT_LT(__dlog_print(DLOG_MAIN, DLOG_INFO, "TAG", "text"), 0);
}

TEST(LogLibrary, null_arguments_are_refused) {
  const samples::EnvironmentDevice device;
  int (*const volatile print)(int, int, const char*, const char*, ...) = __dlog_print;  // the compiler cannot check it
  EXPECT_LT(print(DLOG_MAIN, DLOG_INFO, nullptr, "text"), 0);
  EXPECT_LT(print(DLOG_MAIN, DLOG_INFO, "TAG", nullptr), 0);
  EXPECT_EQ("", ReadFile(device.device().Log()));
}

TEST(LogLibrary, the_error_number_of_the_caller_stays) {
  setenv(host::kDeviceVariable, "/nowhere", 1);
  errno = ERANGE;
  EXPECT_LT(__dlog_print(DLOG_MAIN, DLOG_INFO, "TAG", "text"), 0);
  EXPECT_EQ(ERANGE, errno);
  unsetenv(host::kDeviceVariable);
}

}  // namespace
}  // namespace host_tests
