// The parts of a log line.
#include "tests/doubles/log_line.h"

#include <array>
#include <cstdio>
#include <vector>

namespace doubles {

namespace {

// Removes `start` from the front of `text` if it is there.
bool TakeOff(std::string& text, const std::string& start) {
  if (text.rfind(start, 0) != 0) return false;
  text.erase(0, start.size());
  return true;
}

}  // namespace

std::string PositionOf(const LogLine& line) {
  return line.unit + ": " + line.function + "(" + std::to_string(line.line) + ") > ";
}

std::string MessageOf(const LogLine& line) {
  std::string message = line.text;
  TakeOff(message, PositionOf(line));
  for (const MessageKind& kind : {kInfo, kError, kTrace, kDebug}) {
    if (TakeOff(message, kind.colour)) break;
  }
  return message.substr(0, message.rfind(kReset));
}

std::string TextOf(const char* format, va_list arguments) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  va_list again;
  va_copy(again, arguments);
  std::array<char, 512> usual;
  const auto length = static_cast<std::size_t>(std::vsnprintf(usual.data(), usual.size(), format, arguments));
  std::vector<char> longer(length < usual.size() ? 0 : length + 1);
  if (!longer.empty()) std::vsnprintf(longer.data(), longer.size(), format, again);
  va_end(again);
#pragma GCC diagnostic pop
  return longer.empty() ? usual.data() : longer.data();
}

}  // namespace doubles
