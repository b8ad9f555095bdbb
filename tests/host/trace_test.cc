// The trace library: its file in the format that Perfetto reads.
#include "orvel/trace.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <map>
#include <nlohmann/json.hpp>

#include "platform/host/json.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

using json = host::Json;

class Trace : public DirectoryTest {
 protected:
  Trace() { setenv(host::kTraceVariable, file().c_str(), 1); }
  ~Trace() override { unsetenv(host::kTraceVariable); }

  std::filesystem::path file() const { return directory() / "trace.json"; }
  // The events so far. The closing bracket may be missing in the file.
  json Events() const { return host::ParseJson(ReadFile(file()) + "]"); }
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& event : Events()) {
      texts.push_back(event["ph"].get<std::string>() + " " + event["name"].get<std::string>());
    }
    return texts;
  }
};

TEST_F(Trace, spans_nest) {
  trace_begin("outer(%d)", 7);
  trace_begin("inner");
  trace_end();
  trace_end();
  EXPECT_THAT(Texts(), ElementsAre("B outer(7)", "B inner", "E inner", "E outer(7)"));
}

long MonotonicMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1'000'000 + now.tv_nsec / 1000;
}

TEST_F(Trace, events_carry_process_thread_and_microseconds) {
  const long before = MonotonicMicroseconds();
  trace_begin("span");
  trace_end();
  const auto events = Events();
  EXPECT_EQ(getpid(), events[0]["pid"]);
  EXPECT_EQ(gettid(), events[0]["tid"]);
  EXPECT_LE(before, events[0]["ts"]);
  EXPECT_LE(events[0]["ts"], events[1]["ts"]);
  EXPECT_LE(events[1]["ts"], MonotonicMicroseconds());
}

TEST_F(Trace, an_end_without_an_open_span_writes_nothing) {
  trace_end();
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(Trace, the_file_is_loadable_after_every_event) {
  trace_begin("one");
  EXPECT_EQ(1u, Events().size());
  trace_end();
  EXPECT_EQ(2u, Events().size());
}

TEST_F(Trace, any_name_keeps_the_file_valid) {
  trace_begin("%s", "\"quoted\"\\\n\x01");
  trace_begin("%s", "not utf-8: \xff");
  EXPECT_EQ("B \"quoted\"\\\n\x01", Texts().at(0));
  EXPECT_EQ("B not utf-8: \xEF\xBF\xBD", Texts().at(1));
  trace_end();
  trace_end();
}

TEST_F(Trace, a_null_name_opens_no_span) {
  const char* volatile null = nullptr;
  trace_begin(null);
  trace_end();
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(Trace, without_a_file_nothing_is_written_and_spans_still_nest) {
  unsetenv(host::kTraceVariable);
  trace_begin("unseen");
  setenv(host::kTraceVariable, file().c_str(), 1);
  trace_begin("seen");
  trace_end();
  EXPECT_THAT(Texts(), ElementsAre("B seen", "E seen"));
  trace_end();
}

// The state letter of a process: 'S' while it waits, 'Z' after its end.
char StateOf(pid_t process) {
  const std::string status = ReadFile("/proc/" + std::to_string(process) + "/stat");
  return status.at(status.rfind(") ") + 2);
}

TEST_F(Trace, only_one_process_begins_the_file) {
  const int fd = open(file().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(0, flock(fd, LOCK_EX));
  const pid_t other = fork();
  if (other == 0) {
    close(fd);
    trace_begin("second");
    _exit(0);
  }
  while (std::string("SZ").find(StateOf(other)) == std::string::npos) sched_yield();
  const std::string first = "[\n{\"ph\": \"B\", \"name\": \"first\"}";
  ASSERT_EQ(static_cast<ssize_t>(first.size()), write(fd, first.data(), first.size()));
  close(fd);
  waitpid(other, nullptr, 0);
  EXPECT_THAT(Texts(), ElementsAre("B first", "B second"));
}

TEST_F(Trace, several_processes_share_one_file) {
  for (int writer = 0; writer < 4; ++writer) {
    if (fork() != 0) continue;
    for (int i = 0; i < 100; ++i) {
      trace_begin("%s", std::string(2000, 'x').c_str());
      trace_end();
    }
    _exit(0);
  }
  while (wait(nullptr) > 0) continue;
  std::map<int, int> events;
  for (const auto& event : Events()) ++events[event["pid"].get<int>()];
  EXPECT_EQ(4u, events.size());
  for (const auto& [pid, count] : events) EXPECT_EQ(200, count) << pid;
}

TEST_F(Trace, a_file_that_cannot_be_written_loses_its_events_and_nothing_else) {
  for (const char* refusing : {"/dev/full", "/proc/none/x"}) {
    setenv(host::kTraceVariable, refusing, 1);
    errno = EDOM;
    trace_begin("span of %s", refusing);
    EXPECT_EQ(EDOM, errno);
    setenv(host::kTraceVariable, file().c_str(), 1);
    trace_end();
  }
  EXPECT_THAT(Texts(), ElementsAre("E span of /dev/full", "E span of /proc/none/x"));
}

}  // namespace
}  // namespace host_tests
