// The parts of a log line.
#include "tests/doubles/log_line.h"

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
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  std::vector<char> text(static_cast<std::size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
#pragma GCC diagnostic pop
  return text.data();
}

}  // namespace doubles
