// The list of the commands.
#ifndef ORVEL_ORVELBOX_COMMANDS_ALL_H_
#define ORVEL_ORVELBOX_COMMANDS_ALL_H_

#include "orvelbox/cli/command_line.h"

namespace orvelbox {

// All commands, in the order of the help.
Commands AllCommands();

}  // namespace orvelbox

#endif
