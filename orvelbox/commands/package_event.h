// The commands that only tell the plug-in of an event: an installed package, some hooks, and what to say of them.
#ifndef ORVEL_ORVELBOX_COMMANDS_PACKAGE_EVENT_H_
#define ORVEL_ORVELBOX_COMMANDS_PACKAGE_EVENT_H_

#include <memory>

#include "orvelbox/cli/command.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

struct PackageEvent {
  const char* command;
  const char* description;
  const char* done;        // "cleaned", to be followed by the package
  const char* after = "";  // what follows the package
  HookNames hooks;
};

std::unique_ptr<Command> MakePackageEvent(const PackageEvent& event);

}  // namespace orvelbox

#endif
