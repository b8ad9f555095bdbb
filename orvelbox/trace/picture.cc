// Draws boxes with labels. The page for a browser draws its own.
#include <algorithm>

#include "orvelbox/desk/output.h"
#include "orvelbox/desk/xml.h"
#include "orvelbox/trace/spans.h"

namespace orvelbox {
namespace {

// All values in pixels.
constexpr std::int64_t kWidth = 1200;
constexpr std::int64_t kMargin = 10;
constexpr std::int64_t kRow = 20;
constexpr std::int64_t kTitle = 30;
constexpr std::int64_t kCharacter = 7;
constexpr std::int64_t kInner = kWidth - 2 * kMargin;

std::string Escaped(const std::string& text) { return XmlEscaped(Printable(text)); }

std::string Attribute(const char* name, std::int64_t value) {
  return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

std::int64_t Pixels(std::int64_t time, std::int64_t duration) { return duration == 0 ? 0 : time * kInner / duration; }

std::string Times(const Span& span) {
  return "from " + Milliseconds(span.begin) + " ms, " + Milliseconds(span.end - span.begin) + " ms" +
         (span.closed ? "" : ", never ended");
}

// As much of the name as fits the box.
std::string Label(const Span& span, std::int64_t x, std::int64_t y, std::int64_t width) {
  const auto room = static_cast<std::size_t>(std::max<std::int64_t>(0, (width - 6) / kCharacter));
  if (room < 3) return "";
  std::size_t length = std::min(room, span.name.size());
  const auto continues = [&] { return (static_cast<unsigned char>(span.name[length]) & 0xC0U) == 0x80U; };
  while (length < span.name.size() && length > 0 && continues()) --length;
  return "<text" + Attribute("x", x + 3) + Attribute("y", y + 14) + ">" + Escaped(span.name.substr(0, length)) +
         "</text>";
}

std::string Box(const Span& span, std::int64_t duration, std::int64_t top) {
  const std::int64_t x = kMargin + Pixels(span.begin, duration);
  const std::int64_t width = std::max<std::int64_t>(1, kMargin + Pixels(span.end, duration) - x);
  const std::int64_t y = top + static_cast<std::int64_t>(span.depth) * kRow;
  return "<g><title>" + Escaped(span.name) + "\n" + Times(span) + "</title><rect class=\"span\"" + Attribute("x", x) +
         Attribute("y", y) + Attribute("width", width) + Attribute("height", kRow - 2) + " fill=\"" +
         kSpanColours[ColourOf(span)] + "\"" + (span.closed ? "" : " stroke=\"#c1121f\" stroke-dasharray=\"3\"") +
         "/>" + Label(span, x, y, width) + "</g>\n";
}

std::int64_t Height(const Lane& lane) { return kTitle + static_cast<std::int64_t>(lane.Depth()) * kRow; }

std::string Drawn(const Lane& lane, std::int64_t top) {
  const std::int64_t duration = lane.Duration();
  std::string text = "<text class=\"lane\"" + Attribute("x", kMargin) + Attribute("y", top + 20) + ">" + Title(lane) +
                     ": " + Milliseconds(duration) + " ms</text>\n";
  for (const Span& span : lane.spans) text += Box(span, duration, top + kTitle);
  return text;
}

}  // namespace

std::size_t ColourOf(const Span& span) {
  std::size_t sum = 0;
  for (const char c : span.name.substr(0, span.name.find('('))) sum = sum * 31 + static_cast<unsigned char>(c);
  return sum % kSpanColours.size();
}

std::string TraceSvg(const std::vector<Lane>& lanes) {
  std::string boxes;
  std::int64_t top = 0;
  for (const Lane& lane : lanes) {
    boxes += Drawn(lane, top);
    top += Height(lane);
  }
  const std::string size = std::to_string(kWidth) + " " + std::to_string(top + kMargin);
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size + "\"" + Attribute("width", kWidth) +
         Attribute("height", top + kMargin) +
         ">\n<style>text{font:11px monospace}text.lane{font:bold 13px sans-serif}</style>\n" +
         "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n" + boxes + "</svg>\n";
}

}  // namespace orvelbox
