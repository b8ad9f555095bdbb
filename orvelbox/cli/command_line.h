// The command line: what may be asked for, and where the device lies that it is asked of. Nothing is carried out here.
#ifndef ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_
#define ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_

#include <filesystem>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "orvelbox/check/check.h"
#include "orvelbox/history/log_view.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;

struct Options {
  std::string device;  // --device; empty: as the environment says
  std::string plugin;  // --plugin; empty: the one built with this program
  std::string trace;   // --trace; empty: as the environment says
  bool quiet = false;  // --quiet
  std::string command;
  std::string platform;          // init, test
  std::string target;            // PACKAGE, PKG or FILE
  std::string upgrade;           // test
  std::vector<RawEvent> events;  // events
  LogFilter log_filter;          // log
  bool follow = false;           // log
  bool verify = false;           // cache
  bool json = false;             // listings
  std::string output;            // trace
  CheckOptions check;            // check
};

// Reads the command line. For help and for wrong usage it prints what there is to say and returns the exit status.
std::variant<Options, int> ParseCommandLine(int argc, const char* const* argv);

// The value of an environment variable, or null.
using Environment = std::function<const char*(const char* name)>;

// The directory of the device: `option`, else ORVELBOX_DEVICE, else "orvelbox/device" in the XDG state directory.
// Throws host::DeviceError when none of them is there.
std::filesystem::path ChooseDevice(const std::string& option, const Environment& environment);

}  // namespace orvelbox

#endif
