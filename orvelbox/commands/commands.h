// Carries out one command. What the changing commands do to packages is operations' business.
#ifndef ORVEL_ORVELBOX_COMMANDS_COMMANDS_H_
#define ORVEL_ORVELBOX_COMMANDS_COMMANDS_H_

#include "orvelbox/cli/command_line.h"

namespace orvelbox {

// Returns the exit status. Throws host::DeviceError for what it refuses.
int RunCommand(const Options& options);

}  // namespace orvelbox

#endif
