// Runs a command of the shell.
#ifndef TESTS_SUPPORT_COMMAND_H_
#define TESTS_SUPPORT_COMMAND_H_

#include <string>

namespace support {

// What the command prints, standard error included, and how it ended when that was not with status 0.
std::string OutputOf(const std::string& command);

}  // namespace support

#endif
