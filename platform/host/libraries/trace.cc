// liborvel_trace: spans as Chrome trace events, appended to the file that the environment asks for.
#include "orvel/trace.h"

#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "platform/host/c_boundary.h"
#include "platform/host/device.h"
#include "platform/host/trace_file.h"

namespace {

// The names of this thread's open spans, the innermost last.
thread_local std::vector<std::string> open_spans;

void WriteEvent(char phase, const std::string& name) {
  const char* file = std::getenv(host::kTraceVariable);
  if (file != nullptr && *file != '\0') host::AppendTraceEvent(file, phase, name);
}

}  // namespace

// The header leaves callers unchecked; here the compiler may know.
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
