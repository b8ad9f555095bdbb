// One line of a log, and our own message on it. Whatever stands before the message is left alone, so that any form of
// the platform's log will do; only of a record of a desk's log the time and the process are read. What messages mean is
// in log_facts.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_MESSAGE_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_MESSAGE_H_

#include <functional>
#include <string>
#include <string_view>

namespace orvelbox {

// Calls `take` with each piece of `text` in turn: a colour sequence ("\e[…m"), or what holds none.
void ForEachPiece(std::string_view text, const std::function<void(std::string_view piece, bool colour)>& take);

// "PREFIX UNIT: FUNCTION(LINE) > COLOUR TEXT RESET", the colours however the log spells them, or without them.
struct LogMessage {
  enum class Kind {
    kForeign,  // somebody else's line
    kOurs,
    kDamaged,  // one of ours that cannot be read, or not to its end
  };
  Kind kind = Kind::kForeign;
  std::string unit;  // empty for an error of a desk's record that is not in our form
  std::string function;
  std::string text;  // without colours and line feeds around it
  bool error = false;
  std::string time;     // empty where the line is no desk's record,
  std::string process;  // like this
};

// Reads a line (without its line feed). One that is not `whole` was longer than a reader takes.
LogMessage ReadLogLine(std::string_view line, bool whole = true);

// Takes the prefix off the text; false when the text does not begin with it.
bool TakePrefix(std::string_view& text, std::string_view prefix);

}  // namespace orvelbox

#endif
