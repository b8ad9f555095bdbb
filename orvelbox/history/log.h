// The device's log: what the plug-in's records say about one operation (pure: records in, facts out), and how records
// are shown on a terminal and elsewhere.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/device.h"
#include "platform/host/log_file.h"

namespace orvelbox {

// Calls `take` with each piece of `text` in turn: a colour sequence ("\e[…m"), or what holds none.
void ForEachPiece(std::string_view text, const std::function<void(std::string_view piece, bool colour)>& take);

// The text of a record as the plug-in wraps it: "unit: function(line) > COLOURtextRESET".
struct PluginMessage {
  std::string function;
  std::string text;  // without colours and surrounding line feeds
};
std::optional<PluginMessage> ParsePluginMessage(std::string_view record_text);

// A DLL of a package that the plug-in took for a duplicate.
struct Duplicate {
  std::string origin;              // the copy that counts
  std::string duplicated;          // the package's copy
  bool origin_read_write = false;  // so the package's copy stays
  std::string time{};              // of the report
};

struct LogFacts {
  std::vector<Duplicate> duplicates;  // in the order of the log, each file once
  std::string guide;                  // the line that names the guide page; empty when the install did not fail
  bool restart_failed = false;
  bool not_inhouse = false;         // a hook found no "dotnet-" application and did nothing
  std::vector<std::string> errors;  // all other errors
};

LogFacts InterpretLog(const std::vector<host::LogRecord>& records);

// The records of a piece of the log file; lines that are no records are left out.
std::vector<host::LogRecord> ParseLog(std::string_view text);

struct LogFilter {
  std::string tag;      // empty: every tag
  char priority = 'D';  // this priority (D, I, E) and those above it
};
bool Passes(const LogFilter& filter, const host::LogRecord& record);

// One line for a record, safe for a terminal. The colour sequences inside the text are kept with `colour` and dropped
// without it; every other control character is escaped.
std::string ShowRecord(const host::LogRecord& record, bool colour);

struct LogView {
  LogFilter filter;
  bool follow = false;
  bool colour = false;
  bool json = false;  // one JSON object a record, its text as it was logged, colour sequences included
};

// Shows the log on standard output; with `follow` it goes on with every record that comes, until it is interrupted
// or standard output is gone. Throws host::DeviceError when the log cannot be read.
void ShowLog(const host::Device& device, const LogView& view);

}  // namespace orvelbox

#endif
