// Runs shell commands.
#ifndef TESTS_SUPPORT_COMMAND_H_
#define TESTS_SUPPORT_COMMAND_H_

#include <string>

namespace support {

// The output of the command, standard error included, followed by how it ended if its status was not 0.
std::string OutputOf(const std::string& command);

// The text as one word of a shell command, whatever characters it has.
std::string Quoted(const std::string& text);

}  // namespace support

#endif
