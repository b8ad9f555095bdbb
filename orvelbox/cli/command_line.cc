// Facts about commands, given to CLI11 to parse by.
#include "orvelbox/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "orvelbox/desk/output.h"

namespace orvelbox {
namespace {

constexpr const char* kDescription =
    "orvelbox: a TV device on a desk. It installs packages of .NET applications with the platform's own parser\n"
    "plug-in, and tells what the plug-in did to them.";

constexpr const char* kFooter =
    "A package is a directory with an orvel-manifest.xml in it, or a zip archive of one (.opk). A device is a\n"
    "directory too: --device, else $ORVELBOX_DEVICE, else orvelbox/device in the XDG state directory. Begin with:\n"
    "orvelbox init\n"
    "Exit status: 0 done, 1 the operation failed, 2 wrong usage.";

void AddHelp(CommandFacts& facts) {
  facts.options.insert(facts.options.begin(), {"--help", "", "Print this help message and exit"});
  for (CommandFacts& command : facts.commands) AddHelp(command);
}

// Adds an option to `app`, by the kind of its target.
struct AddTo {
  CLI::App& app;
  const Option& option;

  void operator()(std::monostate) const { app.set_help_flag("-h," + option.name, option.description); }
  void operator()(bool* flag) const { app.add_flag(option.name, *flag, option.description); }
  void operator()(std::string* text) const { Add(*text); }
  void operator()(unsigned* number) const { Add(*number)->check(CLI::Range(1U, option.most)); }
  void operator()(std::vector<std::string>* texts) const {
    CLI::Option* added = Add(*texts);
    if (!added->get_positional()) added->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)->expected(1);
  }

 private:
  template <typename Value>
  CLI::Option* Add(Value& value) const {
    CLI::Option* added = app.add_option(option.name, value, option.description);
    if (added->get_positional()) added->required(!option.may_be_missing);
    if (!option.value.empty()) added->type_name(option.value);
    if (!option.choices.empty()) added->check(CLI::IsMember(option.choices));
    if (option.fault) added->check(option.fault, "");
    return added;
  }
};

void Declare(const CommandFacts& facts, CLI::App& app) {
  app.footer(facts.footer);
  for (const Option& option : facts.options) std::visit(AddTo{app, option}, option.target);
  for (const Option& argument : facts.arguments) std::visit(AddTo{app, argument}, argument.target);
  for (const CommandFacts& command : facts.commands) {
    CLI::App* below = app.add_subcommand(command.name, command.description);
    if (command.chosen != nullptr) below->callback([chosen = command.chosen] { *chosen = true; });
    Declare(command, *below);
  }
}

// Says what CLI11 has to say, help or an error.
int Explain(const CLI::App& app, const CLI::ParseError& error) {
  std::stringstream help;
  std::stringstream complaint;
  const bool usage = app.exit(error, help, complaint) != 0;
  for (std::string line; std::getline(help, line);) Say(line);
  for (std::string line; std::getline(complaint, line);) {
    if (!line.empty()) Complain(line);
  }
  return usage ? kUsage : kDone;
}

const Command& Named(const Commands& commands, const std::string& name) {
  return *std::find_if(commands.begin(), commands.end(),
                       [&](const Command& command) { return command.facts().name == name; });
}

}  // namespace

CommandFacts DescribeProgram(const Commands& commands, GlobalOptions& global) {
  CommandFacts program{"orvelbox", kDescription, kFooter};
  const auto add = [&](Option option, auto* target) {
    option.target = target;
    program.options.push_back(std::move(option));
  };
  add({"--device", "DIR", "The directory of the device"}, &global.device);
  add({"--plugin", "FILE", "The parser plug-in to load, instead of the one built with this program"}, &global.plugin);
  add({"--trace", "FILE", "Append the plug-in's trace spans to FILE (Chrome trace-event format, as Perfetto reads it)"},
      &global.trace);
  add({"--quiet", "", "Print nothing but complaints"}, &global.quiet);
  for (const Command& command : commands) program.commands.push_back(command.facts());
  AddHelp(program);
  return program;
}

std::variant<Request, int> ParseCommandLine(const Commands& commands, int argc, const char* const* argv) {
  GlobalOptions global;
  const CommandFacts program = DescribeProgram(commands, global);
  CLI::App app(program.description, program.name);
  app.require_subcommand(0, 1);  // none at all is told below, so that an unknown one is told by its name
  app.fallthrough();
  Declare(program, app);
  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) throw CLI::RequiredError::Subcommand(1);
    const Command& command = Named(commands, app.get_subcommands().front()->get_name());
    command.check(global);
    return Request{&command, global};
  } catch (const CLI::ParseError& error) {
    return Explain(app, error);
  } catch (const std::invalid_argument& error) {
    Complain(error.what());
    return kUsage;
  }
}

}  // namespace orvelbox
