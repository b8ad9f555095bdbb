// A command: what it says about itself, what it takes, and how it runs. Parsing, --help, the manual page and the
// completions all come of this one description. The commands themselves are in commands/.
#ifndef ORVEL_ORVELBOX_CLI_COMMAND_H_
#define ORVEL_ORVELBOX_CLI_COMMAND_H_

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvelbox {

// Exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kUsage = 2;

// The options that every command has.
struct GlobalOptions {
  std::string device;  // --device; empty: as the environment says
  std::string plugin;  // --plugin; empty: the one built with this program
  std::string trace;   // --trace; empty: as the environment says
  bool quiet = false;  // --quiet
};

// A number from 1 to `most`.
struct Number {
  unsigned* value;
  unsigned most;
};

// Where parsing puts what it reads: a flag, a text, each text of several, a number; nowhere for --help.
using Target = std::variant<std::monostate, bool*, std::string*, std::vector<std::string>*, Number>;

// An option or an argument.
struct Option {
  std::string name;   // "--device"; of an argument "PACKAGE"
  std::string value;  // what follows, "DIR"; empty for a flag and for an argument
  std::string description;
  Target target = {};
  std::vector<std::string> choices = {};  // the values that may follow; empty: any
  bool may_be_missing = false;            // of an argument
  // What is wrong with a value; empty when nothing is.
  std::function<std::string(const std::string& value)> fault = {};
};

// What the program, a command, or a command of a command says about itself.
struct CommandFacts {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<Option> options = {};
  std::vector<Option> arguments = {};
  std::vector<CommandFacts> commands = {};
  bool* chosen = nullptr;  // where parsing notes that a command of a command is asked for
};

class Command {
 public:
  // `example` is how it may be called, after "orvelbox "; `note` stands before it.
  Command(std::string name, std::string description, const std::string& example, const std::string& note = "")
      : facts_{std::move(name), std::move(description), note + "Example: orvelbox " + example} {}
  Command(const Command&) = delete;  // its facts point into it
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  const CommandFacts& facts() const { return facts_; }
  // Looks at what was parsed, once it is. Throws std::invalid_argument, with a line for people, for wrong usage.
  virtual void Accept(const GlobalOptions& /*global*/) {}
  // Does it and returns the exit status. Throws host::DeviceError for what it refuses.
  virtual int Run(const GlobalOptions& global) const = 0;

 protected:
  void AddOption(Option option) { facts_.options.push_back(std::move(option)); }
  void AddArgument(Option argument) { facts_.arguments.push_back(std::move(argument)); }
  void AddCommand(CommandFacts command) { facts_.commands.push_back(std::move(command)); }

 private:
  CommandFacts facts_;
};

using Commands = std::vector<std::unique_ptr<Command>>;

// What many commands take.
inline Option JsonFlag(bool* target) { return {"--json", "", "Print JSON", target}; }
inline Option PackageArgument(std::string* target) {
  return {"PACKAGE", "", "The directory or the .opk archive of the package", target};
}
inline Option IdArgument(std::string* target) { return {"PKG", "", "The package id", target}; }

}  // namespace orvelbox

#endif
