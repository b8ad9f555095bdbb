// The parts of a log line.
#include "tests/doubles/log_line.h"

namespace doubles {

namespace {

// Takes `start` off the text's front, if that is there.
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

}  // namespace doubles
