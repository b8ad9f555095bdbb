// What the plug-in did to the DLLs of an installed package, put together from what it left: information files and the
// log. Only reads; described in why.
#ifndef ORVEL_ORVELBOX_HISTORY_REMOVALS_H_
#define ORVEL_ORVELBOX_HISTORY_REMOVALS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orvelbox/history/log_facts.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// A DLL that was taken for a duplicate. Paths are those of the device.
struct Removal {
  std::string dll;
  std::string origin;             // the copy that decided
  std::string time;               // of the last report in the log; empty when the log has none
  bool removed = false;           // otherwise it was reported only
  bool information_file = false;  // "…_deleted" lies beside its place
  bool origin_there = false;      // the copy that decided is still on the device
};

// What an information file says.
struct InformationFile {
  std::string dll;
  std::string origin;
};
// Reads the text of one, whose path without "_deleted" is `dll`. Nothing when the text is no such information.
std::optional<InformationFile> ParseInformationFile(const std::string& dll, std::string_view text);

// All that is known about the package, ordered by path. Throws host::DeviceError when the log cannot be read.
std::vector<Removal> RemovalsOf(const host::Device& device, const host::Package& package);

}  // namespace orvelbox

#endif
