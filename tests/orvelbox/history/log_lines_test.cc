// The lines of a log file, however long they are.
#include "orvelbox/history/log_lines.h"

#include <sys/resource.h>

#include "tests/orvelbox/frame.h"
#include "tests/support/child.h"

namespace orvelbox {
namespace {

class LogLinesTest : public DirectoryTest {
 protected:
  const std::string log_ = dir_ / "log";
};

std::string Told(const std::optional<LogLines::Line>& line) {
  return line ? line->text + (line->whole ? "" : " (cut)") : "none";
}

TEST_F(LogLinesTest, a_line_longer_than_is_taken_is_cut_and_the_next_one_is_not) {
  WriteFile(log_, "abc\nabcd\n" + std::string(200'000, 'x') + "\n\nabc");
  LogLines lines(log_, 0, 3);
  EXPECT_EQ(Told(lines.Next()), "abc");
  EXPECT_EQ(Told(lines.Next()), "abc (cut)");
  EXPECT_EQ(Told(lines.Next()), "xxx (cut)");
  EXPECT_EQ(Told(lines.Next()), "");
  EXPECT_EQ(Told(lines.Next()), "none");
  EXPECT_EQ(Told(lines.Last()), "abc");
  EXPECT_EQ(Told(lines.Last()), "none");
}

TEST_F(LogLinesTest, reading_may_begin_within_the_log) {
  WriteFile(log_, "abc\ndef\n");
  EXPECT_EQ(Told(LogLines(log_, 4).Next()), "def");
  EXPECT_EQ(Told(LogLines(log_, 8).Next()), "none");
}

TEST_F(LogLinesTest, an_emptied_log_is_read_from_its_beginning) {
  WriteFile(log_, "abc\nabcd");
  LogLines lines(log_, 0, 3);
  EXPECT_EQ(Told(lines.Next()), "abc");
  EXPECT_EQ(Told(lines.Next()), "none");
  lines.FollowTruncation();
  EXPECT_EQ(Told(lines.Next()), "none") << "nothing was taken away";
  WriteFile(log_, "x\n");
  lines.FollowTruncation();
  EXPECT_EQ(Told(lines.Next()), "x");
}

long PeakInKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST_F(LogLinesTest, an_endless_line_takes_no_memory) {
  constexpr long kMostKiB = 20'000;
  WriteFile(log_);
  fs::resize_file(log_, 100'000'000);
  // In a process that had no more memory than it has now.
  support::InFreshProcess([&] {
    const long before = PeakInKiB();
    LogLines lines(log_, 0, 3);
    EXPECT_EQ(Told(lines.Next()), "none");
    EXPECT_LT(PeakInKiB() - before, kMostKiB);
    EXPECT_EQ(Told(lines.Last()), std::string(3, '\0') + " (cut)");
  });
}

}  // namespace
}  // namespace orvelbox
