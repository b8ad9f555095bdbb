// The manual page and the shells' completions, out of what the commands say about themselves. Nothing is told here
// that --help does not tell.
#ifndef ORVEL_ORVELBOX_MANUAL_MANUAL_H_
#define ORVEL_ORVELBOX_MANUAL_MANUAL_H_

#include <string>
#include <vector>

namespace orvelbox {

struct OptionFacts {
  std::string name;                  // "--device"; of an argument "PACKAGE"
  std::string value;                 // what follows, "DIR"; empty for a flag and for an argument
  std::vector<std::string> choices;  // the values that may follow; empty: any
  std::string description;
};

struct CommandFacts {
  std::string name;  // without the program's
  std::string description;
  std::string footer;
  std::vector<OptionFacts> options;
  std::vector<OptionFacts> arguments;
  std::vector<CommandFacts> commands;
};

// What orvelbox says about itself and each of its commands.
CommandFacts DescribeProgram();

// The manual page, in the language of man(7). `version` is the program's.
std::string ManPage(const CommandFacts& program, const std::string& version);

std::string BashCompletion(const CommandFacts& program);
std::string ZshCompletion(const CommandFacts& program);
std::string FishCompletion(const CommandFacts& program);

}  // namespace orvelbox

#endif
