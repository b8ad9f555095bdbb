// The completions in the shells that not every machine has, with package ids that a shell has to quote.

#include "platform/host/package_store.h"
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class ShellCompletion : public Desk {
 protected:
  ShellCompletion() {
    host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadWrite);
    for (const char* id : {"org.example.shop", "a b'c$d:e"}) store.Put({id, "1", "opk", "/opt/usr/x", "", {}, {}});
    support::WriteFile(dir_ / "my shop.opk");
  }

  static bool HasShell(const std::string& shell) {
    return support::OutputOf("command -v " + shell).find("/" + shell + "\n") != std::string::npos;
  }

  // Runs `script` with a shell that finds orvelbox and the completions.
  std::string Run(const std::string& shell, const std::string& script) const {
    support::WriteFile(dir_ / "script", script);
    const fs::path program = ORVELBOX_PROGRAM;
    return support::OutputOf("cd '" + dir_.path().string() + "' && HOME=\"$PWD\" TERM=dumb ORVELBOX_DEVICE='" +
                             device_.directory.string() + "' PATH='" + program.parent_path().string() +
                             "':\"$PATH\" COMPLETION='" COMPLETION_DIRECTORY "' " + shell + " script");
  }

  std::string FishOffers(const std::string& line) const {
    return Run("fish", "source $COMPLETION/orvelbox.fish; complete -C \"" + line + "\"");
  }

  // What a line prints that is typed into zsh, which completes only at a terminal: zpty gives one to an inner zsh.
  std::string ZshRuns(const std::string& keys) const {
    return Run("timeout 60 zsh -f",
               "zmodload zsh/zpty\nzpty inner zsh -f\nzpty -w inner \"PS1=; fpath=($COMPLETION \\$fpath); autoload -U "
               "compinit; compinit -u -D; bindkey '^I' complete-word; echo rea''dy\"\nzpty -r -m inner line '*ready*'\n"
               "zpty -w inner $'" +
                   keys + "; echo en\\'\\'d'\nzpty -r -m inner line '*end*' && print -r -- $line\n");
  }
};

TEST_F(ShellCompletion, fish_offers_what_the_program_says) {
  if (!HasShell("fish")) GTEST_SKIP() << "no fish here; install it with: make test-heavy";
  EXPECT_EQ(FishOffers("orvelbox instal"), "install\tInstall a package: INSTALL, then CLEAN\n");
  EXPECT_EQ(FishOffers("orvelbox check --format s"), "sarif\n");
  EXPECT_EQ(FishOffers("orvelbox check --format=s"), "--format=sarif\n");
  EXPECT_EQ(FishOffers("orvelbox show "), "a b'c$d:e\t1\norg.example.shop\t1\n");
  EXPECT_EQ(FishOffers("orvelbox show 'a b"), "a b'c$d:e\t1\n");
  EXPECT_EQ(FishOffers("orvelbox events cleanup:org"), "cleanup:org.example.shop\t1\n");
}

TEST_F(ShellCompletion, fish_offers_files_where_they_belong) {
  if (!HasShell("fish")) GTEST_SKIP() << "no fish here; install it with: make test-heavy";
  EXPECT_EQ(FishOffers("orvelbox install my"), "my shop.opk\n");
  EXPECT_EQ(FishOffers("orvelbox install --trace=scr"), "--trace=script\n");
  EXPECT_EQ(FishOffers("orvelbox log --tag scr"), "");
}

TEST_F(ShellCompletion, zsh_completes_what_the_program_says) {
  if (!HasShell("zsh")) GTEST_SKIP() << "no zsh here; install it with: make test-heavy";
  EXPECT_THAT(ZshRuns("orvelbox sho\\t org\\t"), HasSubstr("package    org.example.shop\r\n"));
  EXPECT_THAT(ZshRuns("orvelbox show a\\t"), HasSubstr("package    a b'c$d:e\r\n"));
  EXPECT_THAT(ZshRuns("orvelbox show \"a\\t"), HasSubstr("package    a b'c$d:e\r\n"));
  EXPECT_THAT(ZshRuns("orvelbox events dance:x cleanup:org\\t"), HasSubstr("cleanup:org.example.shop"));
}

TEST_F(ShellCompletion, zsh_completes_files_where_they_belong) {
  if (!HasShell("zsh")) GTEST_SKIP() << "no zsh here; install it with: make test-heavy";
  EXPECT_THAT(ZshRuns("orvelbox check my\\t"), HasSubstr("orvelbox: my shop.opk: no zip archive"));
  EXPECT_THAT(ZshRuns("orvelbox check --platform=my\\t x"), HasSubstr("--platform=my\\ shop.opk"));
}

}  // namespace
}  // namespace e2e
