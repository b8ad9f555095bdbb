// Every command and option on CLI11: the one source of parsing, of --help, of the manual page and of the completions.
#ifndef ORVEL_ORVELBOX_CLI_COMMAND_TREE_H_
#define ORVEL_ORVELBOX_CLI_COMMAND_TREE_H_

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "orvelbox/cli/command_line.h"

namespace orvelbox {

// What parsing fills: the options, and what CLI11 has no type for.
struct CommandInput {
  Options options;
  std::vector<std::string> events;
  std::string priority = "D";
  std::string format = "table";
};

// Gives a new `app` everything that may be asked for. Parsing with it fills `input`, which must outlive it.
void AddCommands(CLI::App& app, CommandInput& input);

}  // namespace orvelbox

#endif
