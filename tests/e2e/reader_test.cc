// The commands that only read, and creating a device.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "base/unique_fd.h"
#include "platform/host/log_file.h"
#include "platform/host/package_store.h"
#include "tests/e2e/terminal.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class ReaderE2e : public Desk {
 protected:
  void Log(char priority, const std::string& tag, const std::string& text) const {
    ASSERT_TRUE(host::AppendLogRecord(device_.Log(), priority, tag, text));
  }
};

host::Package ExamplePackage() {
  host::Package package{"org.example.a",      "1.2", "opk", "/opt/usr/globalapps/org.example.a",
                        "org.example.a.main", {},    {}};
  package.applications.push_back({"org.example.a.main",
                                  "ui-application",
                                  "dotnet-inhouse",
                                  "/opt/usr/globalapps/org.example.a/bin/A.dll",
                                  {{"key", "value"}}});
  package.privileges = {"http://orvel.example/privilege/tv.audio"};
  return package;
}

TEST_F(ReaderE2e, list_of_an_empty_device_is_empty) { EXPECT_EQ(RunExpecting(0, {"list"}).out, ""); }

TEST_F(ReaderE2e, list_has_a_line_per_package_in_columns) {
  host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadWrite);
  host::Package package = ExamplePackage();
  store.Put(package);
  store.Put({"z", "10.0.1", "opk", "/opt/usr/globalapps/z", "", {}, {}});
  EXPECT_EQ(RunExpecting(0, {"list"}).out,
            "org.example.a  1.2     /opt/usr/globalapps/org.example.a\n"
            "z              10.0.1  /opt/usr/globalapps/z\n");
}

TEST_F(ReaderE2e, show_tells_all_that_is_registered) {
  host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Put(ExamplePackage());
  EXPECT_EQ(RunExpecting(0, {"show", "org.example.a"}).out,
            "package    org.example.a\n"
            "version    1.2\n"
            "type       opk\n"
            "root       /opt/usr/globalapps/org.example.a\n"
            "main app   org.example.a.main\n"
            "privilege  http://orvel.example/privilege/tv.audio\n"
            "\n"
            "ui-application org.example.a.main\n"
            "  type     dotnet-inhouse\n"
            "  exec     /opt/usr/globalapps/org.example.a/bin/A.dll\n"
            "  metadata key = value\n");
}

TEST_F(ReaderE2e, cache_shows_an_entry_a_line) {
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"), "[START]:/a/x.dll:/b/y.dll[END]");
  EXPECT_EQ(RunExpecting(0, {"cache"}).out,
            "/opt/usr/home/owner/share/dotnet/TPA.txt: 2 entries\n"
            "  /a/x.dll\n"
            "  /b/y.dll\n"
            "/opt/usr/home/owner/share/dotnet/CoBA.txt: 0 entries\n");
}

TEST_F(ReaderE2e, cache_tells_of_missing_and_damaged_files) {
  std::filesystem::remove(OnDesk("/opt/usr/home/owner/share/dotnet/TPA.txt"));
  support::WriteFile(OnDesk("/opt/usr/home/owner/share/dotnet/CoBA.txt"), "[START]/a/");
  EXPECT_EQ(RunExpecting(0, {"cache"}).out,
            "/opt/usr/home/owner/share/dotnet/TPA.txt: missing\n"
            "/opt/usr/home/owner/share/dotnet/CoBA.txt: 1 entry, damaged: it does not begin with [START] and end with "
            "[END]\n"
            "  /a/\n");
}

TEST_F(ReaderE2e, log_filters_by_tag_and_by_priority_and_above) {
  Log('D', "ONE", "detail");
  Log('I', "ONE", "decision");
  Log('E', "TWO", "failure");
  EXPECT_THAT(RunExpecting(0, {"log"}).out, AllOf(HasSubstr("detail"), HasSubstr("decision"), HasSubstr("failure")));
  EXPECT_THAT(RunExpecting(0, {"log", "--priority", "I"}).out,
              AllOf(Not(HasSubstr("detail")), HasSubstr("decision"), HasSubstr("failure")));
  EXPECT_THAT(RunExpecting(0, {"log", "--priority", "E"}).out, AllOf(Not(HasSubstr("decision")), HasSubstr("failure")));
  EXPECT_THAT(RunExpecting(0, {"log", "--tag", "ONE"}).out, AllOf(HasSubstr("detail"), Not(HasSubstr("failure"))));
}

TEST_F(ReaderE2e, a_log_that_goes_into_a_file_has_no_colours_and_no_control_characters) {
  Log('E', "TAG", "\x1b[31mred\x1b[0m \x1b]0;title\a");
  EXPECT_THAT(RunExpecting(0, {"log"}).out, EndsWith(" red \\x1b]0;title\\x07\n"));
}

// The output of orvelbox on a terminal.
class TerminalE2e : public ReaderE2e {
 protected:
  void SetUp() override {
    ReaderE2e::SetUp();
    if (!terminal_) GTEST_SKIP() << "this machine has no pseudo-terminals";
  }

  const Terminal& terminal() const { return terminal_; }

  // The first line of that output.
  std::string OnTerminal(const std::vector<std::string>& arguments) const {
    const pid_t process = Start(arguments, [&] { terminal_.PutAt(STDOUT_FILENO); });
    EXPECT_EQ(WaitFor(process).status, 0);
    return terminal_.ReadUntil("\n");
  }

 private:
  const Terminal terminal_;
};

TEST_F(TerminalE2e, a_log_on_a_terminal_keeps_the_colours_only) {
  Log('E', "TAG", "\x1b[31mred\x1b[0m \x1b]0;title\a");
  EXPECT_THAT(OnTerminal({"log"}), HasSubstr(" \x1b[31mred\x1b[0m \\x1b]0;title\\x07"));
}

TEST_F(TerminalE2e, no_color_is_respected) {
  environment_ = {{"NO_COLOR", "1"}};
  Log('E', "TAG", "\x1b[31mred\x1b[0m");
  EXPECT_THAT(OnTerminal({"log"}), AllOf(HasSubstr(" red"), Not(HasSubstr("\x1b"))));
}

TEST_F(TerminalE2e, a_check_draws_a_bar_and_takes_it_away_at_its_end) {
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  const pid_t process = Start({"check", package, package}, [&] { terminal().PutAt(STDERR_FILENO); });
  const std::string erased = "\r\x1b[K";
  EXPECT_THAT(terminal().ReadUntil(erased),
              AllOf(HasSubstr("\rchecking [##"), HasSubstr(" of 2\x1b[K"), EndsWith(erased)));
  EXPECT_EQ(WaitFor(process).status, 0);
}

TEST_F(ReaderE2e, a_followed_log_shows_what_comes) {
  Log('I', "TAG", "first");
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  const pid_t process = Start({"log", "--follow"}, [&] { dup2(writing.get(), STDOUT_FILENO); });
  writing.Reset();
  FILE* stream = fdopen(dup(reading.get()), "r");
  char line[256] = "";
  ASSERT_NE(fgets(line, sizeof line, stream), nullptr);
  EXPECT_THAT(line, HasSubstr("first"));
  Log('I', "TAG", "second");
  ASSERT_NE(fgets(line, sizeof line, stream), nullptr);
  EXPECT_THAT(line, HasSubstr("second"));
  fclose(stream);
  kill(process, SIGTERM);
  EXPECT_EQ(WaitFor(process).status, 128 + SIGTERM);
}

TEST_F(ReaderE2e, init_makes_a_device_with_the_platforms_assemblies) {
  support::WriteFile(dir_ / "platform/netcoreapp/System.dll", "system");
  support::WriteFile(dir_ / "platform/d.pc/part/Dpc.dll", "dpc");
  const std::string device = dir_ / "new/device";
  EXPECT_EQ(RunExpecting(0, {"--device", device, "init", "--platform", dir_ / "platform"}).out,
            "made the device " + device + "\n");
  const std::string assemblies = device + "/root/usr/share/dotnet.orvel/";
  EXPECT_EQ(support::ReadFile(assemblies + "netcoreapp/System.dll"), "system");
  EXPECT_EQ(support::ReadFile(assemblies + "d.pc/part/Dpc.dll"), "dpc");
  EXPECT_EQ(RunExpecting(0, {"list", "--device", device}).out, "");
}

TEST_F(ReaderE2e, init_leaves_a_device_alone_that_is_there) {
  const auto before = DeviceState();
  EXPECT_THAT(RunExpecting(1, {"init"}).err, HasSubstr(device_.directory.string() + ": is a device already; "));
  EXPECT_EQ(DeviceState(), before);
}

TEST_F(ReaderE2e, init_with_a_platform_that_is_none_leaves_nothing) {
  std::filesystem::create_directory(dir_ / "platform");
  const Result result = RunExpecting(1, {"--device", dir_ / "new", "init", "--platform", dir_ / "platform"});
  EXPECT_THAT(result.err, HasSubstr(dir_ / "platform: no platform assemblies; "));
  EXPECT_FALSE(support::IsThere(dir_ / "new"));
}

TEST_F(ReaderE2e, init_that_cannot_copy_the_platform_leaves_nothing) {
  support::WriteFile(dir_ / "platform/framework/A.dll", "a");
  ASSERT_EQ(mkfifo((dir_ / "platform/framework/pipe").c_str(), 0600), 0);
  const Result result = RunExpecting(1, {"--device", dir_ / "new", "init", "--platform", dir_ / "platform"});
  EXPECT_THAT(result.err, HasSubstr("framework/pipe: is no file, directory or symbolic link"));
  EXPECT_FALSE(support::IsThere(dir_ / "new"));
}

TEST_F(ReaderE2e, the_device_is_found_in_the_xdg_state_directory) {
  environment_ = {{"ORVELBOX_DEVICE", ""}, {"XDG_STATE_HOME", dir_ / "state"}};
  RunExpecting(0, {"init"});
  EXPECT_TRUE(support::IsThere(dir_ / "state/orvelbox/device/device.json"));
}

}  // namespace
}  // namespace e2e
