// The manual page, compared with the commands' own descriptions.
#include "orvelbox/manual/manual.h"

#include <stdexcept>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/all.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

CommandFacts Program() {
  GlobalOptions global;
  return DescribeProgram(AllCommands(), global);  // only its texts are used
}

void ForEachCommand(const CommandFacts& program, const std::function<void(const CommandFacts&)>& look) {
  for (const CommandFacts& command : program.commands) {
    look(command);
    ForEachCommand(command, look);
  }
}

CommandFacts Small() {
  return {"box",
          "box: a small box. It's .NET.",
          "The end.",
          {{"--device", "DIR", "Where"}},
          {},
          {{"cut",
            "Cuts a\\b",
            ".5 of it\nExample: box cut x",
            {{"--how", "H", "How", {"a", "b"}}},
            {{"X", "", "What"}},
            {},
            nullptr,
            "Tools"}}};
}

TEST(Manual, every_command_has_an_example_that_calls_it) {
  int commands = 0;
  ForEachCommand(Program(), [&](const CommandFacts& command) {
    ++commands;
    const std::size_t example = command.footer.find("Example: orvelbox ");
    ASSERT_NE(example, std::string::npos) << command.name;
    EXPECT_THAT(command.footer.substr(example), HasSubstr(command.name));
    EXPECT_THAT(command.description, Not(IsEmpty())) << command.name;
  });
  EXPECT_GE(commands, 19);
}

bool ConsistsOf(std::string_view text, std::string_view letters) {
  return !text.empty() && text.find_first_not_of(letters) == std::string_view::npos;
}

// Releases of CLI11 differ in the argument names that they accept; all of them accept these.
TEST(Manual, every_name_is_a_plain_word) {
  const auto expect_option = [](const Option& option) {
    EXPECT_EQ(option.name.substr(0, 2), "--") << option.name;
    EXPECT_TRUE(ConsistsOf(option.name.substr(2), "abcdefghijklmnopqrstuvwxyz-")) << option.name;
  };
  const CommandFacts program = Program();
  for (const Option& option : program.options) expect_option(option);
  ForEachCommand(program, [&](const CommandFacts& command) {
    for (const Option& option : command.options) expect_option(option);
    for (const Option& argument : command.arguments) {
      EXPECT_TRUE(ConsistsOf(argument.name, "ABCDEFGHIJKLMNOPQRSTUVWXYZ|")) << argument.name;
    }
  });
}

// The option of the command "log".
Option OfLog(const std::string& name) {
  for (const CommandFacts& command : Program().commands) {
    for (const Option& option : command.options) {
      if (command.name == "log" && option.name == name) return option;
    }
  }
  throw std::runtime_error("log has no " + name);
}

TEST(Manual, choices_and_values_are_told_apart_from_flags) {
  EXPECT_THAT(OfLog("--priority").choices, ElementsAre("D", "I", "E"));
  EXPECT_EQ(OfLog("--tag").value, "TAG");
  EXPECT_THAT(OfLog("--tag").choices, IsEmpty());
  EXPECT_EQ(OfLog("--follow").value, "");
}

TEST(Manual, the_page_tells_everything_and_nothing_of_it_is_markup) {
  EXPECT_EQ(ManPage(Small(), "1.0"),
            ".TH ORVELBOX 1 \"\" \"box 1.0\"\n.SH NAME\nbox \\- a small box\n"
            ".SH SYNOPSIS\n\\fBbox\\fR [\\fIOPTIONS\\fR] \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n"
            ".SH DESCRIPTION\nbox: a small box. It's .NET.\n"
            ".SH OPTIONS\n.TP\n\\fB\\-\\-device\\fR \\fIDIR\\fR\nWhere\n"
            ".SH COMMANDS: TOOLS\n.SS \"\\fBcut\\fR \\fIX\\fR\"\nCuts a\\eb\n.TP\n\\fIX\\fR\nWhat\n"
            ".TP\n\\fB\\-\\-how\\fR \\fIH\\fR\nHow\n.PP\n\\&.5 of it\n.br\nExample: box cut x\n.br\n"
            ".SH NOTES\nThe end.\n.br\n");
}

}  // namespace
}  // namespace orvelbox
