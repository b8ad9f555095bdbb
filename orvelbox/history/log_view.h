// The device's log as it is: how its records are shown on a terminal and elsewhere. What they say is in log_facts.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_VIEW_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_VIEW_H_

#include <string>

#include "platform/host/device.h"
#include "platform/host/log_file.h"

namespace orvelbox {

struct LogFilter {
  std::string tag;  // empty: every tag
  char priority;    // this priority (D, I, E) and those above it
};
bool Passes(const LogFilter& filter, const host::LogRecord& record);

// One line for a record, safe for a terminal. The colour sequences inside the text are kept with `colour` and dropped
// without it; every other control character is escaped.
std::string ShowRecord(const host::LogRecord& record, bool colour);

struct LogView {
  LogFilter filter;
  bool follow;
  bool colour;
  bool json;  // one JSON object a record, its text as it was logged, colour sequences included
};

// Shows the log on standard output; with `follow` it goes on with every record that comes, until it is interrupted
// or standard output is gone. Throws host::DeviceError when the log cannot be read.
void ShowLog(const host::Device& device, const LogView& view);

}  // namespace orvelbox

#endif
