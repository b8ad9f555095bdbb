// The completions in shells that may not be installed.

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/all.h"
#include "orvelbox/manual/manual.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/command.h"

namespace orvelbox {
namespace {

// Runs `script` with a shell, in a directory with the completions.
class Completion : public DirectoryTest {
 protected:
  void SetUp() override {
    const Commands commands = AllCommands();
    GlobalOptions global;
    const CommandFacts program = DescribeProgram(commands, global);
    WriteFile(dir_ / "orvelbox.fish", FishCompletion(program));
    WriteFile(dir_ / "_orvelbox", ZshCompletion(program));
  }

  static bool HasShell(const std::string& shell) {
    return support::OutputOf("command -v " + shell).find("/" + shell + "\n") != std::string::npos;
  }

  std::string Run(const std::string& shell, const std::string& script) const {
    WriteFile(dir_ / "script", script);
    return support::OutputOf("cd '" + dir_.path().string() + "' && HOME=\"$PWD\" TERM=dumb " + shell + " script 2>&1");
  }
};

TEST_F(Completion, fish_offers_commands_options_and_values) {
  if (!HasShell("fish")) GTEST_SKIP() << "no fish here; install it with: make test-heavy";
  EXPECT_THAT(Run("fish", "source orvelbox.fish; complete -C 'orvelbox cach'"), StartsWith("cache\t"));
  EXPECT_THAT(Run("fish", "source orvelbox.fish; complete -C 'orvelbox cache ver'"), StartsWith("verify\t"));
  EXPECT_THAT(Run("fish", "source orvelbox.fish; complete -C 'orvelbox log --pri'"), StartsWith("--priority\t"));
  EXPECT_THAT(Run("fish", "source orvelbox.fish; complete -C 'orvelbox check --format s'"), HasSubstr("sarif\t"));
}

// zsh completes only on a terminal, which zpty provides for an inner zsh.
TEST_F(Completion, zsh_offers_commands_and_values) {
  if (!HasShell("zsh")) GTEST_SKIP() << "no zsh here; install it with: make test-heavy";
  const std::string type =
      "zmodload zsh/zpty\nzpty inner zsh -f\nask() {\n  zpty -w inner \"PS1=; fpath=($PWD \\$fpath); autoload -U "
      "compinit;"
      " compinit -u -D; bindkey '^I' complete-word; echo rea''dy\"\n  zpty -r -m inner line '*ready*'\n"
      "  zpty -w -n inner \"$1\"$'\\t'\n  zpty -r -m inner line \"*$2*\" && print found $2\n}\n";
  EXPECT_THAT(Run("timeout 60 zsh -f", type + "ask 'orvelbox uninst' 'uninstall'\n"), HasSubstr("found uninstall"));
  EXPECT_THAT(Run("timeout 60 zsh -f", type + "ask 'orvelbox check --format sa' 'sarif'\n"), HasSubstr("found sarif"));
}

}  // namespace
}  // namespace orvelbox
