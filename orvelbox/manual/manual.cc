// The manual page.
#include "orvelbox/manual/manual.h"

#include <boost/algorithm/string/case_conv.hpp>
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

}  // namespace orvelbox
