// Draws bars with ASCII characters, which every terminal has.
#include <algorithm>
#include <array>
#include <cstdio>

#include "orvelbox/desk/output.h"
#include "orvelbox/trace/spans.h"

namespace orvelbox {
namespace {

constexpr std::int64_t kBarColumns = 40;
constexpr const char* kCut = "...";

// The column of `time` on a bar of length `duration`.
std::int64_t Column(std::int64_t time, std::int64_t duration) {
  return duration == 0 ? 0 : time * kBarColumns / duration;
}

// At least one column is filled. An open span ends in ">".
std::string Bar(const Span& span, std::int64_t duration) {
  const std::int64_t begin = std::min(Column(span.begin, duration), kBarColumns - 1);
  const std::int64_t end = std::max(Column(span.end, duration), begin + 1);
  std::string bar(static_cast<std::size_t>(kBarColumns), ' ');
  for (std::int64_t column = begin; column < end; ++column) bar[static_cast<std::size_t>(column)] = '#';
  if (!span.closed) bar[static_cast<std::size_t>(end - 1)] = '>';
  return bar;
}

std::string RightAligned(const std::string& text, std::size_t columns) {
  return std::string(columns - std::min(columns, text.size()), ' ') + text;
}

// Names are function signatures in ASCII, so a byte is a column.
std::string Cut(const std::string& line, std::size_t width) {
  const std::size_t mark = std::string_view(kCut).size();
  if (width <= mark || line.size() <= width) return line;
  return line.substr(0, width - mark) + kCut;
}

std::string Line(const Span& span, std::int64_t duration) {
  return RightAligned(Milliseconds(span.begin), 10) + RightAligned(Milliseconds(span.end - span.begin), 10) + "  " +
         Bar(span, duration) + "  " + std::string(2 * span.depth, ' ') + Printable(span.name);
}

}  // namespace

std::string Milliseconds(std::int64_t microseconds) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%lld.%03lld", static_cast<long long>(microseconds / 1000),
                static_cast<long long>(microseconds % 1000));
  return text.data();
}

std::string Title(const Lane& lane) {
  const std::string process = "process " + std::to_string(lane.process);
  return lane.thread == lane.process ? process : process + ", thread " + std::to_string(lane.thread);
}

std::vector<std::string> DrawTimeline(const std::vector<Lane>& lanes, std::size_t width) {
  std::vector<std::string> lines;
  for (const Lane& lane : lanes) {
    const std::int64_t duration = lane.Duration();
    lines.push_back(Title(lane) + ": " + Milliseconds(duration) + " ms");
    lines.push_back(Cut("  begin ms   took ms", width));
    for (const Span& span : lane.spans) lines.push_back(Cut(Line(span, duration), width));
  }
  return lines;
}

}  // namespace orvelbox
