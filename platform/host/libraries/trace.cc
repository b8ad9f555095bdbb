// liborvel_trace: appends spans as Chrome trace events to the file that the environment names. The file is a JSON array
// without its closing bracket, which the format does not require. Several processes may write to one file.
#include "orvel/trace.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <vector>

#include "base/unique_fd.h"
#include "platform/host/c_boundary.h"
#include "platform/host/device.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace {

// The names of this thread's open spans, the innermost last.
thread_local std::vector<std::string> open_spans;

std::string EventText(char phase, const std::string& name) {
  using std::chrono::microseconds;
  // The steady clock is CLOCK_MONOTONIC, common to all processes.
  const auto now = std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch());
  return host::JsonText({{"name", name},
                         {"ph", std::string(1, phase)},
                         {"pid", getpid()},
                         {"tid", syscall(SYS_gettid)},
                         {"ts", now.count()}});
}

// Appends one event of this thread: phase 'B' opens a span, 'E' closes it. Does nothing when it cannot write.
void WriteEvent(char phase, const std::string& name) {
  const char* file = std::getenv(host::kTraceVariable);
  if (file == nullptr || *file == '\0') return;
  const std::string event = EventText(phase, name);
  const UniqueFd fd(open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
  struct stat status {};
  // The lock makes sure that only one process finds the file empty. It is released with the descriptor.
  if (!fd || flock(fd.get(), LOCK_EX) != 0 || fstat(fd.get(), &status) != 0) return;
  if (host::WriteAll(fd.get(), (status.st_size == 0 ? "[\n" : ",\n") + event) == 0) return;
  [[maybe_unused]] const int result = ftruncate(fd.get(), status.st_size);  // removes a partial event
}

}  // namespace

// The header does not let the compiler check formats for callers; here it may.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" void trace_begin(const char* name, ...) __attribute__((format(printf, 1, 2)));

void trace_begin(const char* name, ...) {
  const host::KeepErrno keep_errno;
  if (name == nullptr) return;
  va_list arguments;
  va_start(arguments, name);
  host::AnswerOr(false, [&] {
    open_spans.push_back(host::FormatText(name, arguments));
    WriteEvent('B', open_spans.back());
    return true;
  });
  va_end(arguments);
}

void trace_end(void) {
  const host::KeepErrno keep_errno;
  if (open_spans.empty()) return;
  const std::string name = std::move(open_spans.back());
  open_spans.pop_back();
  host::AnswerOr(false, [&] {
    WriteEvent('E', name);
    return true;
  });
}
