// A recorded log line and its parts.
#ifndef TESTS_DOUBLES_LOG_LINE_H_
#define TESTS_DOUBLES_LOG_LINE_H_

#include <cstdarg>
#include <string>

namespace doubles {

// The start of every log line's format.
inline constexpr const char* kLineStart = "%s: %s(%d) > ";
// The end of its text.
inline constexpr const char* kReset = "\033[0m\n";

// A kind of message.
struct MessageKind {
  int priority;
  const char* colour;
};
inline constexpr MessageKind kDebug{3, "\033[0m"};
inline constexpr MessageKind kInfo{4, "\033[36m"};
inline constexpr MessageKind kError{6, "\033[31m"};
inline constexpr MessageKind kTrace{3, "\033[90m"};

// One call of __dlog_print. The last three fields are read from the arguments; they are empty (the line 0) when the
// format does not begin with kLineStart.
struct LogLine {
  int log_id = 0;
  int priority = 0;
  std::string tag;
  std::string format;
  std::string text;
  std::string unit;
  std::string function;
  int line = 0;
};

// The start of a log line's text: "UNIT: FUNCTION(LINE) > ".
std::string PositionOf(const LogLine& line);

// The message of a log line: its text without position, colour and the closing reset.
std::string MessageOf(const LogLine& line);

// The text that vprintf would make.
std::string TextOf(const char* format, va_list arguments);

}  // namespace doubles

#endif
