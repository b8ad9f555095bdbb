// A command: what it says about itself, what it takes, and what it does; and the reading of a command line. Parsing,
// --help, the manual page and the completion all come of this one description. The commands themselves are in
// commands/.
#ifndef ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_
#define ORVEL_ORVELBOX_CLI_COMMAND_LINE_H_

#include <deque>
#include <functional>
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

// What may be completed to, with a word about it that may be empty.
struct Candidate {
  std::string text;
  std::string description;
};
using Candidates = std::vector<Candidate>;

// An option, or an argument.
struct Option {
  std::string name;   // "--device"; of an argument "PACKAGE"
  std::string value;  // what follows, "DIR"; empty for a flag and for an argument
  std::string description;
  std::vector<std::string> choices = {};  // the values that may follow; empty: any
  bool may_be_missing = false;            // of an argument
  unsigned most = 0;                      // of a number, which is at least 1
  // What is wrong with a value; empty when nothing is.
  std::function<std::string(const std::string& value)> fault = {};
  // Where parsing puts what it reads; nowhere for --help. A text is printed, and that is all.
  std::variant<std::monostate, const char*, bool*, std::string*, std::vector<std::string>*, unsigned*> target = {};
  // For completion: the values there are, beside `choices`, and whether names of files are some.
  std::function<Candidates(const GlobalOptions& global)> candidates = {};
  bool is_path = false;
};

// The option, whose value is the name of a file or a directory.
inline Option Path(Option option) {
  option.is_path = true;
  return option;
}

// What the program, a command, or a command of a command says about itself.
struct CommandFacts {
  std::string name;
  std::string description;
  std::string footer;
  std::vector<Option> options = {};
  std::vector<Option> arguments = {};
  std::vector<CommandFacts> commands = {};
  bool* chosen = nullptr;          // where parsing notes that a command of a command is asked for
  std::string group = "Commands";  // the heading that a command stands below in the help
};

class Command {
 public:
  // `example` is how it may be called, after "orvelbox "; `note` stands before it.
  Command(std::string name, std::string description, const std::string& example, const std::string& note = "")
      : facts_{std::move(name), std::move(description), note + "Example: orvelbox " + example} {}
  Command(const Command&) = delete;  // its facts and functions refer to its values
  Command(Command&&) = default;

  // Adds an option or an argument. The value, `otherwise` where it is not given, belongs to the command, and stays
  // where it is when the command is moved.
  template <typename Value>
  const Value& Take(Option option, Value otherwise = {}) {
    Value& value = std::get<Value>(values_.emplace_back(std::move(otherwise)));
    option.target = &value;
    (option.name.front() == '-' ? facts_.options : facts_.arguments).push_back(std::move(option));
    return value;
  }
  // Adds a command below this one that takes the same options. Whether it is asked for belongs to this command.
  const bool& AddCommand(const std::string& name, const std::string& description, const std::string& footer) {
    bool& chosen = std::get<bool>(values_.emplace_back(false));
    facts_.commands.push_back({name, description, footer, facts_.options, {}, {}, &chosen});
    return chosen;
  }

  void SetGroup(const std::string& group) { facts_.group = group; }

  const CommandFacts& facts() const { return facts_; }

  // Looks at what was parsed. Throws std::invalid_argument, with a line for people, for wrong usage.
  std::function<void(const GlobalOptions& global)> check = [](const GlobalOptions&) {};
  // Does it and returns the exit status. Throws host::DeviceError for what it refuses.
  std::function<int(const GlobalOptions& global)> run;

 private:
  CommandFacts facts_;
  std::deque<std::variant<bool, unsigned, std::string, std::vector<std::string>>> values_;
};

using Commands = std::vector<Command>;

// What many commands take.
inline Option JsonFlag() { return {"--json", "", "Print JSON"}; }
inline Option PackageArgument() { return Path({"PACKAGE", "", "The directory or the .opk archive of the package"}); }

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
