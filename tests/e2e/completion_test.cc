// What orvelbox answers to a shell that completes a command line, and what bash makes of it.
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <chrono>

#include "base/unique_fd.h"
#include "platform/host/package_store.h"
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

using support::Quoted;

class CompletionE2e : public Desk {
 protected:
  CompletionE2e() { Register(device_, {"org.example.shop", "a b'c$d:e"}); }

  static void Register(const host::Device& device, const std::vector<std::string>& ids) {
    host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadWrite);
    for (const std::string& id : ids) store.Put({id, "1", "opk", "/opt/usr/x", "", {}, {}});
  }

  std::string Answer(const std::string& line) const { return RunExpecting(0, {"__complete", line}).out; }

  // On a busy machine an answer may come too late, but not for so long.
  template <typename Try>
  static void RepeatUntil(const Try& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done() && std::chrono::steady_clock::now() < end) {
    }
  }

  std::string Offered(const std::string& line) const {
    std::string offered;
    RepeatUntil([&] { return !(offered = Answer(line)).empty(); });
    return offered;
  }

  void ExpectNothingInTime() const {
    EXPECT_EQ(Answer("orvelbox show "), "");
    EXPECT_EQ(Answer("orvelbox events "), "");
    ExpectNoDelay();
  }

  // What is waited for without the limit takes five seconds, or for ever.
  void ExpectNoDelay() const {
    const auto start = std::chrono::steady_clock::now();
    Answer("orvelbox show ");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(4));
  }

  // What comes of lines that are typed into bash.
  std::string BashRuns(const std::string& keys) const {
    support::WriteFile(dir_ / "keys", ". " + Quoted(COMPLETION_DIRECTORY "/orvelbox.bash") + "\n" + keys + "\n");
    const fs::path program = ORVELBOX_PROGRAM;
    return support::OutputOf("cd " + Quoted(dir_.path()) + " && HOME=\"$PWD\" INPUTRC=/dev/null TERM=dumb PATH=" +
                             Quoted(program.parent_path()) + ":\"$PATH\" ORVELBOX_DEVICE=" + Quoted(device_.directory) +
                             " timeout 60 bash --norc -i < keys 2>&1");
  }

  void ExpectOfBash(const std::string& keys, const std::string& expected) const {
    std::string output;
    RepeatUntil([&] { return (output = BashRuns(keys)).find(expected) != std::string::npos; });
    EXPECT_THAT(output, HasSubstr(expected)) << keys;
  }
};

TEST_F(CompletionE2e, packages_and_events_of_the_device_that_the_line_names_are_offered) {
  EXPECT_EQ(Offered("orvelbox uninstall "), "a b'c$d:e\t1\norg.example.shop\t1\n");
  const host::Device other = host::CreateDevice(dir_ / "other");
  Register(other, {"b"});
  EXPECT_EQ(Offered("orvelbox --device " + Quoted(other.directory) + " show "), "b\t1\n");
  environment_ = {{"HOME", dir_.path()}};
  EXPECT_EQ(Offered("orvelbox --device=~/other events clean"), "clean:b\t1\ncleanup:b\t1\n");
  EXPECT_EQ(Offered("orvelbox why --device ~/other "), "b\t1\n/\n");
}

TEST_F(CompletionE2e, a_device_in_use_is_not_waited_for) {
  const UniqueFd lock(open(device_.LockFile().c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  EXPECT_EQ(Offered("orvelbox show o"), "org.example.shop\t1\n");
  ExpectNoDelay();
}

TEST_F(CompletionE2e, a_locked_database_offers_nothing_and_holds_nobody_up) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(device_.Database().c_str(), &database), SQLITE_OK);
  const char* lock = "PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM packages";
  ASSERT_EQ(sqlite3_exec(database, lock, nullptr, nullptr, nullptr), SQLITE_OK);
  ExpectNothingInTime();
  sqlite3_close(database);
}

TEST_F(CompletionE2e, a_damaged_device_offers_nothing) {
  support::WriteFile(device_.Database(), std::string(4096, 'x'));
  ExpectNothingInTime();
  fs::remove(device_.Database());
  ExpectNothingInTime();
  support::WriteFile(device_.ConfigFile(), "{");
  ExpectNothingInTime();
}

TEST_F(CompletionE2e, a_device_whose_files_hang_offers_nothing_and_holds_nobody_up) {
  fs::remove(device_.ConfigFile());
  ASSERT_EQ(mkfifo(device_.ConfigFile().c_str(), 0600), 0);
  ExpectNothingInTime();
}

TEST_F(CompletionE2e, bash_completes_commands_options_and_values) {
  ExpectOfBash("orvelbox lis\t --js\t", "\"org.example.shop\"");
  ExpectOfBash("orvelbox show org\t", "package    org.example.shop\n");
  ExpectOfBash("orvelbox check --format=sa\t keys", "sarif-2.1.0");
  ExpectOfBash("echo x; A=1 " ORVELBOX_PROGRAM " vers\t --vers\t", "plug-in interface");
}

TEST_F(CompletionE2e, bash_quotes_what_it_completes) {
  for (const char* typed : {"a", "a\\ b", "'a", "\"a", "a\\ b\\'c\\$d:"}) {
    ExpectOfBash(std::string("orvelbox show ") + typed + "\t", "package    a b'c$d:e\n");
  }
}

TEST_F(CompletionE2e, bash_completes_past_the_colons_at_which_it_breaks_words) {
  Register(device_, {"x:y z:1"});
  for (const char* typed : {"x", "x:", "x:y", "'x:y", "x:'y", "x:y\\ z:"}) {
    ExpectOfBash(std::string("orvelbox show ") + typed + "\t", "package    x:y z:1\n");
  }
  ExpectOfBash("orvelbox events cleanup:org\t dance:x", "cleanup:org.example.shop  dance:x");
}

TEST_F(CompletionE2e, bash_completes_files_where_they_belong) {
  support::WriteFile(dir_ / "my shop.opk");
  ExpectOfBash("orvelbox check my\t", "orvelbox: my shop.opk: no zip archive");
  ExpectOfBash("orvelbox --device=oth why my\t", "why my\\ shop.opk");
  EXPECT_THAT(BashRuns("orvelbox log --tag my\t"), Not(HasSubstr("shop.opk")));
}

}  // namespace
}  // namespace e2e
