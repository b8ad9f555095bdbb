// The changing commands: what each does to packages, which hooks it calls, and when it takes everything back. Each
// returns the exit status (0, or 1 when the operation failed and said so) and throws host::DeviceError for what it
// refuses; then device and database are as before.
#ifndef ORVEL_ORVELBOX_OPERATIONS_OPERATIONS_H_
#define ORVEL_ORVELBOX_OPERATIONS_OPERATIONS_H_

#include <filesystem>
#include <string>
#include <vector>

#include "orvelbox/operations/session.h"

namespace orvelbox {

// INSTALL, then CLEAN (UNDO after -1). The package is taken away again when that fails.
int Install(const Session& session, const std::filesystem::path& directory);

// UPGRADE, then CLEAN (UNDO after -1). The version before is put back when that fails.
int Upgrade(const Session& session, const std::filesystem::path& directory);

// UNINSTALL, then CLEAN; then the package goes. It stays when a hook fails.
int Uninstall(const Session& session, const std::string& package_id);

// A command that only tells the plug-in of an event, in the words of the command line.
struct PackageEvent {
  const char* command;
  const char* explanation;
  const char* done;    // "cleaned", to be followed by the package
  const char* effect;  // after the package; may be empty
  std::vector<std::string> hooks;
};
const std::vector<PackageEvent>& PackageEvents();
int RunPackageEvent(const Session& session, const PackageEvent& event, const std::string& package_id);

// A raw event, as `events` takes it.
struct RawEvent {
  std::string hook;
  std::string package_id;
};
// Reads "EVENT:PKG". Throws std::invalid_argument, with a line for people, when it is none.
RawEvent ParseRawEvent(const std::string& text);
// Calls the hooks of all events in one process. Nothing but what the hooks do is changed.
int RunRawEvents(const Session& session, const std::vector<RawEvent>& events);

}  // namespace orvelbox

#endif
