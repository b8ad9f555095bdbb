// Trace files: the spans in them (which function ran inside which, when, and for how long) and drawings of them. The
// writer is platform/host/libraries/trace.cc.
#ifndef ORVEL_ORVELBOX_TRACE_SPANS_H_
#define ORVEL_ORVELBOX_TRACE_SPANS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvelbox {

struct Span {
  std::string name;
  std::int64_t begin = 0;  // microseconds after the first span of the lane
  std::int64_t end = 0;
  std::size_t depth = 0;  // the number of enclosing spans
  bool closed = false;    // false: its process ended first; `end` is the last known time
};

// The spans of one thread. Each operation calls its hooks in a new process.
struct Lane {
  std::int64_t process = 0;
  std::int64_t thread = 0;
  std::vector<Span> spans;  // in order of their begin; never empty

  std::int64_t Duration() const;
  std::size_t Depth() const;  // the number of nested levels
};

// The lanes in the text of trace file `file`, in order of their begin. An end event without an open span is ignored.
// Throws host::DeviceError when the text is no trace.
std::vector<Lane> ReadTrace(std::string_view text, const std::string& file);

// Microseconds as milliseconds with three decimals.
std::string Milliseconds(std::int64_t microseconds);
// "process 7, thread 8"; the thread is omitted when it is the process's first.
std::string Title(const Lane& lane);

// The lines of a timeline; each lane has its own scale. A line has at most `width` columns; 0 means no limit.
std::vector<std::string> DrawTimeline(const std::vector<Lane>& lanes, std::size_t width);

// Light enough for black letters.
inline constexpr std::array<const char*, 6> kSpanColours = {"#8ecae6", "#ffd166", "#b7e4c7",
                                                            "#f4acb7", "#cdb4db", "#ddb892"};
// Which of them a span has: the same for every span of a unit, "unit(line) signature".
std::size_t ColourOf(const Span& span);

// An SVG document: for every lane, on a scale of its own, a box for every span, in the row of its depth.
std::string TraceSvg(const std::vector<Lane>& lanes);

// An HTML document that draws the same boxes, to be looked at more closely by keys or mouse, with a table of the spans.
// Everything is in it; nothing is fetched.
std::string TraceHtml(const std::vector<Lane>& lanes, const std::string& title);

// Throws host::DeviceError when `file` cannot be written to or has content that is no trace. Call before any work.
void RequireTraceable(const std::filesystem::path& file);

}  // namespace orvelbox

#endif
