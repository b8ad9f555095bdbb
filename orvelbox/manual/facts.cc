// The facts, asked of CLI11.
#include <sstream>

#include "orvelbox/cli/command_tree.h"
#include "orvelbox/manual/manual.h"

namespace orvelbox {
namespace {

// The values in the words of a validator, "{a,b}" or "{a->1,b->2}".
std::vector<std::string> Choices(const std::string& words) {
  const std::size_t begin = words.find('{');
  const std::size_t end = words.find('}', begin);
  if (begin == std::string::npos || end == std::string::npos) return {};
  std::vector<std::string> choices;
  std::istringstream list(words.substr(begin + 1, end - begin - 1));
  for (std::string choice; std::getline(list, choice, ',');) choices.push_back(choice.substr(0, choice.find("->")));
  return choices;
}

OptionFacts Describe(const CLI::Option& option) {
  const std::string type = option.get_type_name();  // "DIR", or with the words of validators, "P:{D,I,E}"
  OptionFacts facts;
  facts.name = option.get_positional() ? option.get_name(true) : "--" + option.get_lnames().front();
  if (!option.get_positional() && option.get_items_expected_max() != 0) facts.value = type.substr(0, type.find(':'));
  facts.choices = Choices(type);
  facts.description = option.get_description();
  return facts;
}

CommandFacts Describe(const CLI::App& app) {
  CommandFacts facts{app.get_name(), app.get_description(), app.get_footer(), {}, {}, {}};
  for (const CLI::Option* option : app.get_options()) {
    (option->get_positional() ? facts.arguments : facts.options).push_back(Describe(*option));
  }
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    facts.commands.push_back(Describe(*command));
  }
  return facts;
}

}  // namespace

CommandFacts DescribeProgram() {
  CommandInput input;
  CLI::App app;
  AddCommands(app, input);
  return Describe(app);
}

}  // namespace orvelbox
