// The expected content of a journal, written like the call tree, and its comparison with the recorded one, for example:
//
//   const Source kGac("morvath", "gac");
//   Difference(Current().journal,
//              {Traced("morvath", "int gac(const std::string&)",
//                      {kGac.Debug("orvelFX size = %zu", size_t{2}),
//                       kGac.At(12).Error("gone: %s", "x")})});
#ifndef TESTS_DOUBLES_EXPECTED_JOURNAL_H_
#define TESTS_DOUBLES_EXPECTED_JOURNAL_H_

#include <initializer_list>
#include <string>
#include <vector>

#include "tests/doubles/platform.h"

namespace doubles {

// Stands for any line number above zero.
inline constexpr int kAnyLine = 0;

// The expected events, as texts in which a line number may be open.
using Steps = std::vector<std::string>;

// The text that printf would make.
std::string Formatted(const char* format, ...);

// The function that logs, and its unit, which implies the tag. A message is given by its format and arguments; both the
// format and the text must match.
class Source {
 public:
  Source(std::string unit, std::string function) : unit_(std::move(unit)), function_(std::move(function)) {}

  // The same function with this line number.
  Source At(int line) const {
    Source source = *this;
    source.line_ = line;
    return source;
  }

  template <typename... Arguments>
  Steps Debug(const char* format, const Arguments&... arguments) const {
    return Message(kDebug, format, Formatted(format, Plain(arguments)...));
  }
  template <typename... Arguments>
  Steps Info(const char* format, const Arguments&... arguments) const {
    return Message(kInfo, format, Formatted(format, Plain(arguments)...));
  }
  template <typename... Arguments>
  Steps Error(const char* format, const Arguments&... arguments) const {
    return Message(kError, format, Formatted(format, Plain(arguments)...));
  }
  template <typename... Arguments>
  Steps Trace(const char* format, const Arguments&... arguments) const {
    return Message(kTrace, format, Formatted(format, Plain(arguments)...));
  }

 private:
  static const char* Plain(const std::string& text) { return text.c_str(); }
  template <typename T>
  static T Plain(const T& value) {
    return value;
  }
  template <std::size_t kSize>
  static const char* Plain(const char (&text)[kSize]) {
    return text;
  }

  Steps Message(const MessageKind& kind, const std::string& format, const std::string& message) const;

  std::string unit_;
  std::string function_;
  int line_ = kAnyLine;
};

// A traced function: the entry line and the span's begin, the steps inside, the exit line and the span's end. `line` is
// the line in the label.
Steps Traced(const std::string& unit, const std::string& signature, std::initializer_list<Steps> inside,
             int line = kAnyLine);
Steps Traced(const std::string& unit, const std::string& signature, const Steps& inside, int line = kAnyLine);

// A restart of the candidate loader.
Steps Restart(const std::string& loader);

// Any other call, as the journal shows it.
Steps Call(const std::string& text);

// All steps in order.
Steps Join(std::initializer_list<Steps> parts);

// Compares a journal with the expected steps; kCall events count only when calls are expected. Also checks that labels
// match and spans nest. Returns an empty text, or the difference and the whole journal.
std::string Difference(const std::vector<Event>& journal, const Steps& expected);

}  // namespace doubles

#endif
