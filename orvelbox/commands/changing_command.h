// What the commands share that change a device or only call hooks on it.
#ifndef ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_
#define ORVEL_ORVELBOX_COMMANDS_CHANGING_COMMAND_H_

#include <functional>
#include <string>

#include "orvelbox/cli/command.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

// Makes `command` run `change` on the opened device.
void RunOnSession(Command& command, const std::function<int(const Session& session)>& change);

// Says what `command` did, below the headline `done` or `failed`, and complains of a failure. Returns the exit status.
int Tell(const std::string& command, const Change& change, const std::string& done, const std::string& failed);

// A command that only calls hooks for an installed package; it was "`done` PACKAGE`after`".
Command MakePackageEvent(const std::string& name, const std::string& description, const std::string& done,
                         const std::string& after, HookNames hooks);

}  // namespace orvelbox

#endif
