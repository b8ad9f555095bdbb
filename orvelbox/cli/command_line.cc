// Facts about commands, given to CLI11 to parse by.
#include "orvelbox/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "orvelbox/cli/nearest.h"
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

constexpr const char* kVersions = "orvelbox " ORVELBOX_VERSION "\nplug-in interface " MORVATH_INTERFACE_VERSION;

// Wide enough for the names of the commands and of most options, so that a line of help fits on a terminal.
constexpr std::size_t kNameColumn = 20;

void AddHelp(CommandFacts& facts) {
  facts.options.insert(facts.options.begin(), {"--help", "", "Print this help message and exit"});
  for (CommandFacts& command : facts.commands) AddHelp(command);
}

// Adds an option to `app`, by the kind of its target.
struct AddTo {
  CLI::App& app;
  const Option& option;

  void operator()(std::monostate) const { app.set_help_flag("-h," + option.name, option.description); }
  void operator()(const char* text) const { app.set_version_flag(option.name, text, option.description); }
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
    CLI::App* below = app.add_subcommand(command.name, command.description)->group(command.group);
    if (command.chosen != nullptr) below->callback([chosen = command.chosen] { *chosen = true; });
    Declare(command, *below);
  }
}

// The command that the words ask for, or the program.
const CLI::App& Chosen(const CLI::App& app) {
  const auto below = app.get_subcommands();
  return below.empty() ? app : Chosen(*below.front());
}

// As it is called.
std::string NameOf(const CLI::App& command) {
  const CLI::App* above = command.get_parent();
  return (above == nullptr ? "" : NameOf(*above) + " ") + command.get_name();
}

std::string HelpOn(const CLI::App& command) { return NameOf(command) + " --help"; }

// "; " and what was meant, or where one learns it.
std::string WayOut(const std::string& typed, const std::vector<std::string>& names, const CLI::App& command) {
  const std::string meant = Nearest(typed, names);
  return meant.empty() ? "; see: " + HelpOn(command) : "; did you mean " + meant + "?";
}

std::string NoSuchOption(const std::string& typed, const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
    for (const CLI::Option* option : app->get_options()) {
      for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    }
  }
  const bool known = std::find(names.begin(), names.end(), typed) != names.end();
  if (known) return typed + ": stands before the command that takes it; write: " + NameOf(command) + " " + typed;
  return typed + ": no such option" + WayOut(typed, names, command);
}

// What is wrong with a word that has no place.
std::string FaultOf(const std::string& word, const CLI::App& command) {
  if (word.empty()) return "an empty argument; see: " + HelpOn(command);
  if (word.front() == '-') return NoSuchOption(word.substr(0, word.find('=')), command);
  std::vector<std::string> names;
  for (const CLI::App* below : command.get_subcommands({})) names.push_back(below->get_name());
  if (names.empty()) return word + ": one argument too many; see: " + HelpOn(command);
  return word + ": no such command" + WayOut(word, names, command);
}

// The first of the words that have no place.
std::optional<std::string> LeftOver(const CLI::App& app) {
  const std::vector<std::string> left = app.remaining(true);
  const auto word = std::find_if(left.begin(), left.end(), [](const std::string& text) { return text != "--"; });
  return word == left.end() ? std::nullopt : std::optional(*word);
}

// Says what CLI11 has to say, help or an error; but a mistyped word is told first, which explains the rest.
int Explain(const CLI::App& app, const CLI::ParseError& error) {
  std::stringstream help;
  std::stringstream complaint;
  const bool usage = app.exit(error, help, complaint) != 0;
  for (std::string line; std::getline(help, line);) Say(line);
  const std::optional<std::string> left_over = usage ? LeftOver(app) : std::nullopt;
  if (left_over) complaint.str(FaultOf(*left_over, Chosen(app)));
  for (std::string line; std::getline(complaint, line);) {
    if (!line.empty()) Complain(line);
  }
  return usage ? kUsage : kDone;
}

int ExplainBriefly(const CLI::App& app, const CLI::Formatter& formatter) {
  Complain("no command");
  std::stringstream commands(formatter.make_subcommands(&app, CLI::AppFormatMode::Normal));
  for (std::string line; std::getline(commands, line);) Elaborate(line);
  Elaborate("");
  Elaborate(HelpOn(app) + " and orvelbox COMMAND --help tell more. Begin with: orvelbox init");
  return kUsage;
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
  add(Path({"--device", "DIR", "The directory of the device"}), &global.device);
  add(Path({"--plugin", "FILE", "Load this parser plug-in instead of the program's own"}), &global.plugin);
  add(Path({"--trace", "FILE", "Append the plug-in's trace spans to FILE (as Perfetto reads)"}), &global.trace);
  add({"--quiet", "", "Print nothing but complaints"}, &global.quiet);
  program.options.push_back({"--version", "", "Print the versions of program and plug-in interface, and exit"});
  program.options.back().target = kVersions;
  for (const Command& command : commands) program.commands.push_back(command.facts());
  AddHelp(program);
  return program;
}

std::variant<Request, int> ParseCommandLine(const Commands& commands, int argc, const char* const* argv) {
  GlobalOptions global;
  const CommandFacts program = DescribeProgram(commands, global);
  CLI::App app(program.description, program.name);
  const auto formatter = std::make_shared<CLI::Formatter>();
  formatter->column_width(kNameColumn);
  formatter->label("SUBCOMMAND", "COMMAND");
  app.formatter(formatter);
  app.require_subcommand(0, 1);  // none at all is told below, so that an unknown one is told by its name
  app.fallthrough();
  Declare(program, app);
  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) return ExplainBriefly(app, *formatter);
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
