// The command line: which command is asked for, with which options. Nothing is carried out here.
#ifndef ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_
#define ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_

#include <variant>

#include "orvelbox/cli/command.h"

namespace orvelbox {

struct Request {
  const Command* command;  // one of the commands, its options filled in
  GlobalOptions global;
};

// Reads the command line. For help and for wrong usage it prints what there is to say and returns the exit status.
std::variant<Request, int> ParseCommandLine(const Commands& commands, int argc, const char* const* argv);

// What the program says about itself and each of its commands. Its options are those of `global`.
CommandFacts DescribeProgram(const Commands& commands, GlobalOptions& global);

}  // namespace orvelbox

#endif
