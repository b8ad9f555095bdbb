// The fixed paths on the current machine: what runs there, and how it ends.
#include "platform/host/fixed_paths.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <stdexcept>

#include "tests/host/frame.h"

namespace host_tests {
namespace {

using host::FixedPathsMethod;

// A device's root. The tests run on the machine as it is, with any method.
class FixedPaths : public DirectoryTest {
 protected:
  FixedPaths() { LayOutRoot(root()); }
  void SetUp() override {
    std::string reason;
    if (host::AvailableFixedPathsMethod(&reason) == FixedPathsMethod::kNone) GTEST_SKIP() << reason;
  }
  const fs::path& root() const { return directory(); }
};

TEST_F(FixedPaths, lead_into_the_root) { support::WithFixedPaths(root(), ExpectDeviceAtFixedPaths); }

TEST_F(FixedPaths, what_is_written_there_lands_in_the_root_only) {
  support::WithFixedPaths(root(), [] {
    WriteFile("/opt/usr/new", "1");
    WriteFile("/usr/share/dotnet.orvel/new", "2");
    fs::remove_all("/opt/usr/globalapps");
  });
  EXPECT_EQ("1", ReadFile(root() / "opt/usr/new"));
  EXPECT_EQ("2", ReadFile(root() / "usr/share/dotnet.orvel/new"));
  EXPECT_FALSE(fs::exists(root() / "opt/usr/globalapps"));
}

TEST_F(FixedPaths, the_machine_is_as_before) {
  if (host::AvailableFixedPathsMethod(nullptr) == host::FixedPathsMethod::kInPlace) {
    GTEST_SKIP() << "working in place here: what other runs make comes and goes meanwhile";
  }
  const auto opt = [] { return fs::exists("/opt") ? support::NamesIn("/opt") : std::vector<std::string>{"no /opt"}; };
  const auto share_before = support::NamesIn("/usr/share");
  const auto opt_before = opt();
  support::WithFixedPaths(root(), [] { WriteFile("/opt/usr/new", "1"); });
  EXPECT_EQ(share_before, support::NamesIn("/usr/share"));
  EXPECT_EQ(opt_before, opt());
}

TEST_F(FixedPaths, the_release_marker_is_there_only_where_the_root_has_it) {
  support::WithFixedPaths(root(), [] { EXPECT_FALSE(IsThere("/etc/release")); });
  WriteFile(root() / "etc/release", "r");
  support::WithFixedPaths(root(), [] {
    EXPECT_EQ("r", ReadFile("/etc/release"));
    EXPECT_EQ(0, access("/etc/passwd", R_OK));  // the other files of the directory are still there
  });
}

TEST_F(FixedPaths, the_result_of_the_body_is_the_exit_status) {
  const auto outcome = host::RunWithFixedPaths(root(), [] { return 7; });
  EXPECT_FALSE(outcome.signalled);
  EXPECT_EQ(7, outcome.code);
}

TEST_F(FixedPaths, a_crash_of_the_body_is_told_as_its_signal) {
  const auto outcome = host::RunWithFixedPaths(root(), []() -> int {
    signal(SIGSEGV, SIG_DFL);  // a sanitizer would handle it
    raise(SIGSEGV);
    return 0;
  });
  EXPECT_TRUE(outcome.signalled);
  EXPECT_EQ(SIGSEGV, outcome.code);
}

TEST_F(FixedPaths, an_exception_becomes_one_line_and_exit_status_1) {
  host::ChildOutcome outcome;
  const auto errors = support::StandardErrorOf(
      [&] { outcome = host::RunWithFixedPaths(root(), []() -> int { throw std::runtime_error("no luck"); }); });
  EXPECT_FALSE(outcome.signalled);
  EXPECT_EQ(1, outcome.code);
  EXPECT_THAT(errors, testing::EndsWith("orvelbox: no luck\n"));
}

TEST_F(FixedPaths, output_is_neither_lost_nor_doubled) {
  const fs::path file = root() / "output";
  support::InFreshProcess([&] {
    ASSERT_NE(nullptr, std::freopen(file.c_str(), "w", stdout));
    std::cout << "before ";
    std::printf("and ");
    host::RunWithFixedPaths(root(), [] {
      std::printf("inside ");
      std::cout << "of it ";
      return 0;
    });
    std::cout << "after";
  });
  EXPECT_EQ("before and inside of it after", ReadFile(file));
}

TEST_F(FixedPaths, the_working_directory_stays) {
  const fs::path before = fs::current_path();
  fs::current_path(root() / "opt");
  support::WithFixedPaths(root(), [&] {
    EXPECT_EQ(root() / "opt", fs::current_path());
    EXPECT_EQ("user area", ReadFile("usr/globalapps/p/x"));
  });
  fs::current_path(before);
}

TEST_F(FixedPaths, a_working_directory_that_is_gone_does_no_harm) {
  support::InFreshProcess([&] {
    const fs::path gone = root() / "gone";
    fs::create_directory(gone);
    fs::current_path(gone);
    fs::remove(gone);
    support::WithFixedPaths(root(), ExpectDeviceAtFixedPaths);
  });
}

TEST_F(FixedPaths, the_body_runs_as_the_same_user) {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  support::WithFixedPaths(root(), [&] {
    EXPECT_EQ(user, geteuid());
    EXPECT_EQ(group, getegid());
  });
}

TEST_F(FixedPaths, an_ordinary_user_gains_no_rights) {
  const std::string obstacle = OrdinaryUsersObstacle();
  if (!obstacle.empty()) GTEST_SKIP() << obstacle;
  ASSERT_EQ(0, chmod((root() / "opt/usr").c_str(), 0777));
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    support::WithFixedPaths(root(), [] {
      ExpectDeviceAtFixedPaths();
      WriteFile("/opt/usr/locked", "x");
      ASSERT_EQ(0, chmod("/opt/usr/locked", 0));
      EXPECT_LT(open("/opt/usr/locked", O_RDONLY | O_CLOEXEC), 0);
    });
  });
}

TEST_F(FixedPaths, a_signal_to_this_process_reaches_the_child) {
  support::InFreshProcess([&] {
    const pid_t parent = getpid();
    signal(SIGTERM, SIG_DFL);  // may have been ignored from the start
    const auto outcome = host::RunWithFixedPaths(root(), [&] {
      kill(parent, SIGTERM);
      for (;;) pause();
      return 0;
    });
    EXPECT_TRUE(outcome.signalled);
    EXPECT_EQ(SIGTERM, outcome.code);
  });
}

TEST_F(FixedPaths, signals_work_as_before_afterwards) {
  host::RunWithFixedPaths(root(), [] { return 0; });
  sigset_t mask;
  ASSERT_EQ(0, pthread_sigmask(SIG_SETMASK, nullptr, &mask));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) EXPECT_EQ(0, sigismember(&mask, signal)) << signal;
}

TEST_F(FixedPaths, an_exit_status_is_seen_by_those_who_ignore_their_children) {
  const auto before = signal(SIGCHLD, SIG_IGN);
  const auto outcome = host::RunWithFixedPaths(root(), [] { return 3; });
  EXPECT_EQ(SIG_IGN, signal(SIGCHLD, before));
  EXPECT_EQ(3, outcome.code);
}

TEST_F(FixedPaths, a_root_that_is_not_there_is_told) {
  EXPECT_EQ((root() / "none").string() + ": is no directory to take the fixed paths from",
            ErrorOf([&] { host::RunWithFixedPaths(root() / "none", [] { return 0; }); }));
}

}  // namespace
}  // namespace host_tests
