// The manual page, and the completions of bash, zsh and fish. These offer the commands, the options of the program and
// of the command that stands on the line, the values where there is a choice, and files otherwise.
#include "orvelbox/manual/manual.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <locale>
#include <sstream>

namespace orvelbox {
namespace {

// A hyphen that is to be typed, a backslash and a dot at the beginning mean something else to roff.
std::string Roff(std::string text) {
  boost::replace_all(text, "\\", "\\e");
  boost::replace_all(text, "-", "\\-");
  return text.empty() || (text.front() != '.' && text.front() != '\'') ? text : "\\&" + text;
}

// Each line by itself, as the text is laid out.
std::string Lines(const std::string& text) {
  std::string lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines += Roff(line) + "\n.br\n";
  return lines;
}

std::string Entry(const Option& option) {
  const std::string value = option.value.empty() ? "" : " \\fI" + Roff(option.value) + "\\fR";
  const std::string face = option.name.front() == '-' ? "\\fB" : "\\fI";
  return ".TP\n" + face + Roff(option.name) + "\\fR" + value + "\n" + Roff(option.description) + "\n";
}

std::string Entries(const CommandFacts& command) {
  std::string text;
  for (const Option& argument : command.arguments) text += Entry(argument);
  for (const Option& option : command.options) text += Entry(option);
  return text;
}

// The command and those below it; `prefix` are the names above it.
std::string Section(const CommandFacts& command, const std::string& prefix) {
  const std::string name = prefix + command.name;
  std::string synopsis = "\\fB" + Roff(name) + "\\fR";
  for (const Option& argument : command.arguments) synopsis += " \\fI" + Roff(argument.name) + "\\fR";
  std::string text = ".SS \"" + synopsis + "\"\n" + Roff(command.description) + "\n" + Entries(command) + ".PP\n" +
                     Lines(command.footer);
  for (const CommandFacts& below : command.commands) text += Section(below, name + " ");
  return text;
}

// The names of options or commands.
template <typename Facts>
std::vector<std::string> Names(const std::vector<Facts>& all) {
  std::vector<std::string> names;
  names.reserve(all.size());
  for (const Facts& facts : all) names.push_back(facts.name);
  return names;
}

// Within single quotes of a shell.
std::string Quoted(const std::string& text) { return "'" + boost::replace_all_copy(text, "'", "'\\''") + "'"; }

// As Quoted, for fish, in which a backslash escapes within single quotes.
std::string QuotedForFish(std::string text) {
  boost::replace_all(text, "\\", "\\\\");
  return "'" + boost::replace_all_copy(text, "'", "\\'") + "'";
}

// Every option of the program and its commands, each name once.
std::vector<Option> AllOptions(const CommandFacts& program) {
  std::vector<Option> all = program.options;
  for (const CommandFacts& command : program.commands) {
    for (const Option& option : command.options) {
      bool known = false;
      for (const Option& other : all) known = known || other.name == option.name;
      if (!known) all.push_back(option);
    }
  }
  return all;
}

// The names of the options that a value follows.
std::vector<std::string> WithValue(const CommandFacts& program) {
  std::vector<std::string> names;
  for (const Option& option : AllOptions(program)) {
    if (!option.value.empty()) names.push_back(option.name);
  }
  return names;
}

// "case" branches of bash that offer the values after an option.
std::string BashValues(const CommandFacts& program) {
  const std::string answer = " mapfile -t COMPREPLY < <(compgen ";
  const std::string end = " -- \"$word\"); return ;;\n";
  std::string text;
  std::vector<std::string> files;
  for (const Option& option : AllOptions(program)) {
    if (!option.choices.empty()) {
      text.append("    ").append(option.name).append(")").append(answer);
      text.append("-W ").append(Quoted(boost::join(option.choices, " "))).append(end);
    } else if (!option.value.empty()) {
      files.push_back(option.name);
    }
  }
  return text + "    " + boost::join(files, "|") + ")" + answer + "-f" + end;
}

// "case" branches of bash that set the words which a command takes.
std::string BashWords(const CommandFacts& program) {
  std::string text;
  for (const CommandFacts& command : program.commands) {
    std::vector<std::string> words = Names(command.options);
    for (const std::string& name : Names(command.commands)) words.push_back(name);
    text += "    " + command.name + ") words=" + Quoted(boost::join(words, " ")) + " ;;\n";
  }
  return text;
}

// One line of zsh's _arguments for an option. What follows a ":" or "]" is read, so they are escaped.
std::string ZshArgument(const Option& option) {
  std::string text = option.name + "[";
  for (const char c : option.description) text += (c == ':' || c == '[' || c == ']' ? "\\" : "") + std::string(1, c);
  text += "]";
  if (!option.value.empty()) {
    text +=
        ":" + option.value + ":" + (option.choices.empty() ? "_files" : "(" + boost::join(option.choices, " ") + ")");
  }
  return Quoted(text);
}

std::string ZshOptions(const std::vector<Option>& options) {
  std::string text;
  for (const Option& option : options) text += " \\\n        " + ZshArgument(option);
  return text;
}

std::string ZshCommand(const CommandFacts& command) {
  std::string words = "_files";
  if (!command.commands.empty()) words = "(" + boost::join(Names(command.commands), " ") + ")";
  return "    " + command.name + ")\n      _arguments" + ZshOptions(command.options) + " \\\n        " +
         Quoted("*:argument:" + words) + " ;;\n";
}

std::string FishOption(const Option& option, const std::string& condition) {
  std::string text = "complete -c orvelbox" + condition + " -l " + option.name.substr(2);
  if (!option.value.empty()) text += " -r";
  if (!option.choices.empty()) text += " -f -a " + QuotedForFish(boost::join(option.choices, " "));
  return text + " -d " + QuotedForFish(option.description) + "\n";
}

std::string FishCommand(const CommandFacts& command) {
  std::string text = "complete -c orvelbox -n __fish_use_subcommand -f -a " + command.name + " -d " +
                     QuotedForFish(command.description) + "\n";
  const std::string condition = " -n '__fish_seen_subcommand_from " + command.name + "'";
  for (const Option& option : command.options) text += FishOption(option, condition);
  for (const CommandFacts& below : command.commands) {
    text +=
        "complete -c orvelbox" + condition + " -f -a " + below.name + " -d " + QuotedForFish(below.description) + "\n";
  }
  return text;
}

}  // namespace

std::string ManPage(const CommandFacts& program, const std::string& version) {
  const std::size_t colon = program.description.find(": ");
  const std::size_t stop = program.description.find('.');
  std::string text = ".TH ORVELBOX 1 \"\" \"" + program.name + " " + version + "\"\n.SH NAME\n" + program.name +
                     " \\- " + Roff(program.description.substr(colon + 2, stop - colon - 2)) + "\n.SH SYNOPSIS\n\\fB" +
                     program.name + "\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n.SH DESCRIPTION\n" +
                     Roff(program.description) + "\n.SH OPTIONS\n" + Entries(program);
  std::string group;
  for (const CommandFacts& command : program.commands) {
    if (command.group != group)
      text += ".SH COMMANDS: " + Roff(boost::to_upper_copy(command.group, std::locale::classic())) + "\n";
    group = command.group;
    text += Section(command, "");
  }
  return text + ".SH NOTES\n" + Lines(program.footer);
}

std::string BashCompletion(const CommandFacts& program) {
  return "# Completion of orvelbox for bash.\n_orvelbox() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} command='' words i\n"
         "  case ${COMP_WORDS[COMP_CWORD - 1]} in\n" +
         BashValues(program) +
         "  esac\n"
         "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
         "    case ${COMP_WORDS[i]} in\n"
         "      " +
         boost::join(WithValue(program), "|") +
         ") ((i++)) ;;\n"
         "      -*) ;;\n"
         "      *) command=${COMP_WORDS[i]}; break ;;\n"
         "    esac\n"
         "  done\n"
         "  case $command in\n"
         "    '') words=" +
         Quoted(boost::join(Names(program.commands), " ")) + " ;;\n" + BashWords(program) +
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words " +
         boost::join(Names(program.options), " ") +
         "\" -- \"$word\")\n"
         "  if [[ -n $command && $word != -* ]]; then\n"
         "    mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -f -- \"$word\")\n"
         "  fi\n"
         "}\n"
         "complete -o filenames -F _orvelbox orvelbox\n";
}

std::string ZshCompletion(const CommandFacts& program) {
  std::string commands;
  for (const CommandFacts& command : program.commands) {
    commands += "    " + Quoted(command.name + ":" + command.description) + "\n";
  }
  std::string branches;
  for (const CommandFacts& command : program.commands) branches += ZshCommand(command);
  return "#compdef orvelbox\n# Completion of orvelbox for zsh.\n_orvelbox() {\n"
         "  local context state line\n  local -a commands\n  commands=(\n" +
         commands + "  )\n  _arguments -C" + ZshOptions(program.options) +
         " \\\n        '1:command:->command' '*::argument:->argument'\n"
         "  if [[ $state == command ]]; then\n    _describe command commands\n    return\n  fi\n"
         "  case $words[1] in\n" +
         branches + "  esac\n}\n_orvelbox \"$@\"\n";
}

std::string FishCompletion(const CommandFacts& program) {
  std::string text = "# Completion of orvelbox for fish.\n";
  for (const Option& option : program.options) text += FishOption(option, "");
  for (const CommandFacts& command : program.commands) text += FishCommand(command);
  return text;
}

}  // namespace orvelbox
