// Plug-ins that crash, throw, end the process or damage files; and orvelbox killed while one runs.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "base/unique_fd.h"
#include "tests/e2e/terminal.h"
#include "tests/support/orvelbox_desk.h"
#include "tests/support/zip.h"

namespace e2e {
namespace {

class MisbehavingPluginE2e : public HookDesk {
 protected:
  Result RunPlugin(int status, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--plugin", MISBEHAVING_PLUGIN});
    return RunExpecting(status, arguments);
  }

  std::string Package(const std::string& id, const std::string& version = "1") const {
    return MakePackage(id + "-" + version, ManifestText(id, version), {{"bin/Main.dll", version}});
  }

  // The install must fail with `reason` and leave the device unchanged.
  void ExpectFailedInstall(const std::string& id, const std::string& reason) const {
    const auto before = DeviceState();
    const Result result = RunPlugin(1, {"install", Package(id)});
    EXPECT_THAT(result.out, HasSubstr("not installed: " + id + " 1\n"));
    EXPECT_THAT(result.err, HasSubstr("orvelbox: " + id + ": install failed, " + reason));
    const auto after = DeviceState();
    EXPECT_EQ(after.size(), before.size());
    EXPECT_EQ(RunExpecting(0, {"list"}).out, "");
    EXPECT_EQ(CacheFile("TPA.txt"), "[START][END]");
    EXPECT_EQ(CacheFile("CoBA.txt"), "[START][END]");
  }
};

TEST_F(MisbehavingPluginE2e, a_crash_fails_the_install) {
  ExpectFailedInstall("a.crash", "INSTALL was killed by signal 11 (Segmentation fault)");
}

TEST_F(MisbehavingPluginE2e, an_exception_fails_the_install) {
  ExpectFailedInstall("a.throw", "INSTALL threw an exception: out of cheese");
}

TEST_F(MisbehavingPluginE2e, an_exit_fails_the_install) {
  ExpectFailedInstall("a.exit", "INSTALL ended its process with exit status 7");
}

TEST_F(MisbehavingPluginE2e, cache_files_that_a_crashed_hook_spoilt_are_put_back) {
  ExpectFailedInstall("a.spoil", "CLEAN was killed by signal 11");
}

TEST_F(MisbehavingPluginE2e, a_library_without_hooks_is_no_plug_in) {
  const auto before = DeviceState();
  const Result result = RunExpecting(1, {"--plugin", NO_PLUGIN, "install", Package("a")});
  EXPECT_THAT(result.err, HasSubstr("no parser plug-in, it has no PKGMGR_PARSER_PLUGIN_INSTALL\n"));
  EXPECT_EQ(DeviceState().size(), before.size());
}

TEST_F(MisbehavingPluginE2e, a_file_that_is_no_library_is_named) {
  support::WriteFile(dir_ / "text.so", "no library");
  const Result result = RunExpecting(1, {"--plugin", dir_ / "text.so", "install", Package("a")});
  EXPECT_THAT(result.err, HasSubstr(dir_ / "text.so: "));
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "");
}

TEST_F(MisbehavingPluginE2e, a_failed_uninstall_keeps_the_package) {
  RunPlugin(0, {"install", Package("a.stay")});
  const Result result = RunPlugin(1, {"uninstall", "a.stay"});
  EXPECT_THAT(result.out, HasSubstr("not uninstalled: a.stay 1; it stays installed\n"
                                    "    UNINSTALL returned 3, CLEAN returned 0\n"));
  EXPECT_THAT(result.err, HasSubstr("orvelbox: a.stay: uninstall failed, UNINSTALL returned 3; see: orvelbox log"));
  EXPECT_TRUE(support::IsThere(OnDesk("/opt/usr/globalapps/a.stay/bin/Main.dll")));
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "a.stay  1  /opt/usr/globalapps/a.stay\n");
}

TEST_F(MisbehavingPluginE2e, an_uninstall_whose_hook_crashed_puts_the_cache_files_back) {
  RunExpecting(0, {"install", Package("a.spoil")});
  const auto before = DeviceState();
  EXPECT_THAT(RunPlugin(1, {"uninstall", "a.spoil"}).err, HasSubstr("uninstall failed, CLEAN was killed by signal 11"));
  EXPECT_EQ(DeviceState(), before);
}

TEST_F(MisbehavingPluginE2e, events_end_with_the_first_crash) {
  RunPlugin(0, {"install", Package("a")});
  RunExpecting(0, {"install", Package("b.crash")});
  const Result result = RunPlugin(1, {"events", "clean:a", "install:b.crash", "clean:a", "clean:b.crash"});
  EXPECT_THAT(result.out, HasSubstr("CLEAN a returned 0\nINSTALL b.crash was killed by signal 11"));
  EXPECT_THAT(result.err, HasSubstr("(2 events were not told to the plug-in)\n"));
}

TEST_F(MisbehavingPluginE2e, events_end_with_the_first_exception) {
  RunExpecting(0, {"install", Package("a")});
  RunExpecting(0, {"install", Package("b.throw")});
  const Result result = RunPlugin(1, {"events", "install:b.throw", "clean:a"});
  EXPECT_THAT(result.out, HasSubstr("INSTALL b.throw threw an exception: out of cheese"));
  EXPECT_THAT(result.err, HasSubstr("orvelbox: events: failed, INSTALL threw an exception: out of cheese; see: "
                                    "orvelbox log --priority E (1 event was not told to the plug-in)\n"));
}

// A named pipe, of which both ends stay open.
class NamedPipe {
 public:
  explicit NamedPipe(const std::string& path) : path_(path), ends_(Open(path)) {}

  const std::string& path() const { return path_; }
  void Send() const { ASSERT_EQ(write(ends_.get(), "!", 1), 1); }
  // False when nothing arrives.
  bool Receive() const {
    constexpr int kPatienceInMilliseconds = 20000;
    pollfd waiting{ends_.get(), POLLIN, 0};
    char byte = 0;
    return poll(&waiting, 1, kPatienceInMilliseconds) == 1 && read(ends_.get(), &byte, 1) == 1;
  }

 private:
  static UniqueFd Open(const std::string& path) {
    if (mkfifo(path.c_str(), 0600) != 0) throw std::runtime_error("cannot make the pipe " + path);
    return UniqueFd(open(path.c_str(), O_RDWR | O_CLOEXEC));
  }

  std::string path_;
  UniqueFd ends_;
};

// A hook that waits: one pipe reports that it runs, the other lets it continue.
class WaitingHookE2e : public MisbehavingPluginE2e {
 protected:
  WaitingHookE2e() : started_(dir_ / "started"), go_on_(dir_ / "go-on") {
    environment_ = {{"TEST_STARTED", started_.path()}, {"TEST_GO_ON", go_on_.path()}};
  }

  // Starts orvelbox in a process prepared by `before`, and returns when its hook runs.
  pid_t StartUntilHookRuns(
      const std::vector<std::string>& arguments, const std::function<void()>& before = [] {}) const {
    std::vector<std::string> all = {"--plugin", MISBEHAVING_PLUGIN};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const pid_t process = Start(all, before);
    EXPECT_TRUE(started_.Receive()) << "the hook was not called";
    return process;
  }
  void LetHookGoOn() const { go_on_.Send(); }

 private:
  NamedPipe started_;
  NamedPipe go_on_;
};

TEST_F(WaitingHookE2e, a_second_process_is_told_of_the_first_one) {
  const pid_t first = StartUntilHookRuns({"install", Package("a.wait")});
  const Result second = RunPlugin(1, {"install", Package("b")});
  LetHookGoOn();
  EXPECT_EQ(WaitFor(first).status, 0);
  EXPECT_THAT(second.err, HasSubstr(": in use by another orvelbox (process " + std::to_string(first) + "); wait for"));
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "a.wait  1  /opt/usr/globalapps/a.wait\n");
}

TEST_F(WaitingHookE2e, the_version_before_is_put_back_after_a_killed_upgrade) {
  RunExpecting(0, {"install", Package("a.wait", "1")});
  RunExpecting(0, {"install", Package("b")});
  const pid_t upgrade = StartUntilHookRuns({"upgrade", Package("a.wait", "2")});
  ASSERT_EQ(kill(upgrade, SIGKILL), 0);
  EXPECT_EQ(WaitFor(upgrade).status, 128 + SIGKILL);
  LetHookGoOn();
  Result next = Run({"clean", "b"});
  while (next.err.find("in use by") != std::string::npos) next = Run({"clean", "b"});  // until the hook ends
  EXPECT_THAT(next.out,
              HasSubstr("mended a.wait: an upgrade was interrupted; the version before it is in place again\n"));
  EXPECT_EQ(support::ReadFile(OnDesk("/opt/usr/globalapps/a.wait/bin/Main.dll")), "1");
  EXPECT_THAT(RunExpecting(0, {"list"}).out, HasSubstr("a.wait  1  "));
  EXPECT_FALSE(support::IsThere(OnDesk("/opt/usr/globalapps/.previous")));
}

TEST_F(WaitingHookE2e, an_interrupted_install_is_taken_back) {
  const pid_t install = StartUntilHookRuns({"install", Package("a.wait")});
  ASSERT_EQ(kill(install, SIGINT), 0);
  EXPECT_NE(WaitFor(install).status, 0);
  EXPECT_EQ(RunExpecting(0, {"list"}).out, "");
  EXPECT_FALSE(support::IsThere(OnDesk("/opt/usr/globalapps/a.wait")));
}

constexpr const char* kEraseLine = "\r\x1b[K";

// In two parts: on a busy machine the files may be written after the first two seconds.
void ExpectSecondsAndFiles(const Terminal& terminal, const std::string& action) {
  for (const std::string& part : {"\r" + action + ": 2 s, ", std::string("files written: 2\x1b[K")}) {
    EXPECT_THAT(terminal.ReadUntil(part), EndsWith(part));
  }
}

TEST_F(WaitingHookE2e, on_a_terminal_what_takes_longer_than_a_second_says_so_and_for_how_long) {
  const Terminal terminal;
  if (!terminal) GTEST_SKIP() << "this machine has no pseudo-terminals";
  const pid_t install = StartUntilHookRuns({"install", Package("a.wait")}, [&] { terminal.PutAt(STDERR_FILENO); });
  ExpectSecondsAndFiles(terminal, "install");
  LetHookGoOn();
  EXPECT_THAT(terminal.ReadUntil(kEraseLine), EndsWith(kEraseLine));
  const Result result = WaitFor(install);
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("installed a.wait 1"));
}

TEST_F(WaitingHookE2e, a_test_of_a_package_says_what_takes_long_as_well) {
  const Terminal terminal;
  if (!terminal) GTEST_SKIP() << "this machine has no pseudo-terminals";
  const std::string archive = dir_ / "a.opk";
  support::WriteFile(archive, support::ZipOf({{"orvel-manifest.xml", ManifestText("a.wait", "1")}, {"A.dll", "a"}}));
  const pid_t test = StartUntilHookRuns({"test", archive}, [&] { terminal.PutAt(STDERR_FILENO); });
  ExpectSecondsAndFiles(terminal, "test");
  LetHookGoOn();
  LetHookGoOn();  // the one of the upgrade
  EXPECT_THAT(WaitFor(test).out, HasSubstr(": lived through without a trace\n"));
}

TEST_F(WaitingHookE2e, quiet_is_quiet_on_a_terminal_as_well) {
  const Terminal terminal;
  if (!terminal) GTEST_SKIP() << "this machine has no pseudo-terminals";
  const auto show_errors_there = [&] { terminal.PutAt(STDERR_FILENO); };
  const pid_t install = StartUntilHookRuns({"--quiet", "install", Package("a.wait")}, show_errors_there);
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  LetHookGoOn();
  EXPECT_EQ(WaitFor(install).status, 0);
  // This output comes last and ends the reading.
  WaitFor(Start({"show", "no.such"}, show_errors_there));
  EXPECT_THAT(terminal.ReadUntil("\n"), StartsWith("orvelbox: "));
}

}  // namespace
}  // namespace e2e
