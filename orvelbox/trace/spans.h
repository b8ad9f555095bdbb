// The spans in a trace file: which function ran inside which, when, and for how long. How they are drawn is not known
// here, nor how the file was written (platform/host/trace_file.h).
#ifndef ORVEL_ORVELBOX_TRACE_SPANS_H_
#define ORVEL_ORVELBOX_TRACE_SPANS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvelbox {

struct Span {
  std::string name;
  std::int64_t begin = 0;  // microseconds after the first span of the lane
  std::int64_t end = 0;
  std::size_t depth = 0;  // how many spans it lies in
  bool closed = false;    // false: its process ended first; `end` is the last time that is known
};

// What one thread did. An operation calls its hooks in a process of its own.
struct Lane {
  std::int64_t process = 0;
  std::int64_t thread = 0;
  std::vector<Span> spans;  // as they began; never empty

  std::int64_t Duration() const;
  std::size_t Depth() const;  // how many levels of spans there are
};

// The lanes in the text of trace file `file`, as they began; an end without a span is left out. Throws
// host::DeviceError when the text is no trace.
std::vector<Lane> ReadTrace(std::string_view text, const std::string& file);

}  // namespace orvelbox

#endif
