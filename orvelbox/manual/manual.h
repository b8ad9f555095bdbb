// The manual page, out of what the commands say about themselves. It holds nothing that --help does not say.
#ifndef ORVEL_ORVELBOX_MANUAL_MANUAL_H_
#define ORVEL_ORVELBOX_MANUAL_MANUAL_H_

#include <string>

#include "orvelbox/cli/command_line.h"

namespace orvelbox {

// The manual page, in the language of man(7). `version` is the program's.
std::string ManPage(const CommandFacts& program, const std::string& version);

}  // namespace orvelbox

#endif
