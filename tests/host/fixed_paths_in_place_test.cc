// The in-place method, on a machine where the kernel refuses namespaces.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/host/fixed_paths.h"
#include "platform/host/fixed_paths_methods.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

using host::FixedPathsMethod;

class InPlace : public MachineTest {
 protected:
  InPlace() {
    WriteFile(root() / "usr/share/dotnet.orvel/F.dll", "platform");
    WriteFile(root() / "opt/usr/x", "user area");
    WriteFile(root() / "etc/release", "marker");
  }
  // Runs `body` as root of an emptied machine without namespaces, after `prepare`.
  static void OnMachine(const std::function<void()>& prepare, const std::function<void()>& body) {
    OnEmptiedMachine([&] {
      prepare();
      machine::RefuseNamespaces();
      body();
    });
  }
  static void OnMachine(const std::function<void()>& body) {
    OnMachine([] {}, body);
  }
  host::ChildOutcome Run(const std::function<int()>& body) const { return host::RunWithFixedPaths(root(), body); }
  static void ExpectNothingMade() {
    for (const char* path : host::kFixedPaths) EXPECT_FALSE(IsThere(path)) << path;
  }
  // A run that leaves its links behind: a child of this process is killed together with its own child.
  void LeaveLinksBehind() const {
    const pid_t run = fork();
    if (run == 0) {
      setpgid(0, 0);
      host::RunWithFixedPaths(root(), [] { return kill(0, SIGKILL); });
    }
    int status = 0;
    ASSERT_EQ(run, waitpid(run, &status, 0));
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(fs::is_symlink("/opt/usr"));
  }
};

TEST_F(InPlace, is_the_way_of_root_without_namespaces) {
  OnMachine([] {
    std::string reason;
    EXPECT_EQ(FixedPathsMethod::kInPlace, host::AvailableFixedPathsMethod(&reason));
    EXPECT_THAT(reason, HasSubstr("no private namespaces here ("));
    EXPECT_THAT(reason, HasSubstr("only working in place: to leave the machine alone, allow user namespaces"));
    ExpectNothingMade();
  });
}

TEST_F(InPlace, the_fixed_paths_lead_into_the_root_and_are_gone_afterwards) {
  OnMachine([this] {
    const auto outcome = Run([] {
      EXPECT_EQ("platform", ReadFile("/usr/share/dotnet.orvel/F.dll"));
      EXPECT_EQ("user area", ReadFile("/opt/usr/x"));
      EXPECT_EQ("marker", ReadFile("/etc/release"));
      WriteFile("/opt/usr/new", "1");
      return testing::Test::HasFailure() ? 1 : 7;
    });
    EXPECT_FALSE(outcome.signalled);
    EXPECT_EQ(7, outcome.code);
    EXPECT_EQ("1", ReadFile(root() / "opt/usr/new"));
    ExpectNothingMade();
    EXPECT_EQ("", ReadFile("/run/lock/orvelbox-in-place"));
  });
}

TEST_F(InPlace, the_caller_may_tell_people_before_anything_is_made) {
  OnMachine([this] {
    int told = 0;
    const auto tell = [&] {
      ++told;
      ExpectNothingMade();
    };
    EXPECT_EQ("", support::StandardErrorOf([&] {
                host::RunWithFixedPaths(
                    root(), [] { return 0; }, tell);
              }));
    EXPECT_EQ(1, told);
  });
}

TEST_F(InPlace, a_missing_parent_is_made_and_removed) {
  OnMachine(machine::RemoveOpt, [this] {
    EXPECT_EQ(0, Run([] { return fs::exists("/opt/usr/x") ? 0 : 1; }).code);
    EXPECT_FALSE(fs::exists("/opt"));
  });
}

TEST_F(InPlace, only_what_the_root_has_is_made) {
  fs::remove_all(root() / "etc");
  OnMachine([this] { EXPECT_EQ(0, Run([] { return IsThere("/etc/release") ? 1 : 0; }).code); });
}

TEST_F(InPlace, is_refused_where_a_fixed_path_exists) {
  OnMachine([this] {
    WriteFile("/opt/usr/mine", "x");
    std::string reason;
    EXPECT_EQ(FixedPathsMethod::kNone, host::AvailableFixedPathsMethod(&reason));
    EXPECT_THAT(reason,
                HasSubstr("no working in place (/opt/usr exists already): mend that, or allow user namespaces"));
    EXPECT_EQ(reason, ErrorOf([this] { host::RunWithFixedPaths(root(), [] { return 0; }); }));
    EXPECT_THAT(support::NamesIn("/opt/usr"), ElementsAre("mine"));
    EXPECT_FALSE(IsThere("/usr/share/dotnet.orvel"));
  });
}

TEST_F(InPlace, what_appeared_since_the_check_is_not_touched) {
  OnMachine([this] {
    const UniqueFd turn = host::LockFixedPaths();
    WriteFile("/opt/usr", "mine");
    EXPECT_EQ("cannot work in place: /opt/usr exists already; move it away, or allow namespaces",
              ErrorOf([&] { host::InPlaceLinks(turn, root()); }));
    EXPECT_EQ("mine", ReadFile("/opt/usr"));
    EXPECT_FALSE(IsThere("/usr/share/dotnet.orvel"));
  });
}

TEST_F(InPlace, is_refused_where_the_lock_file_is_not_ours) {
  OnMachine([this] {
    fs::create_symlink("/etc/victim", "/run/lock/orvelbox-in-place");
    EXPECT_THAT(ErrorOf([this] { host::RunWithFixedPaths(root(), [] { return 0; }); }),
                HasSubstr("/run/lock/orvelbox-in-place: cannot open"));
    EXPECT_FALSE(IsThere("/etc/victim"));
  });
}

TEST_F(InPlace, a_crash_leaves_nothing_behind) {
  OnMachine([this] {
    EXPECT_EQ(SIGKILL, Run([] { return raise(SIGKILL); }).code);
    ExpectNothingMade();
  });
}

TEST_F(InPlace, a_signal_to_the_parent_leaves_nothing_behind) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    OnMachine([&] {
      const pid_t parent = getpid();
      signal(number, SIG_DFL);  // may have been ignored from the start
      const auto outcome = Run([&] {
        kill(parent, number);
        for (;;) pause();
        return 0;
      });
      EXPECT_TRUE(outcome.signalled);
      EXPECT_EQ(number, outcome.code);
      ExpectNothingMade();
    });
  }
}

TEST_F(InPlace, what_a_killed_run_left_is_removed_by_the_next) {
  OnMachine([this] {
    LeaveLinksBehind();
    EXPECT_EQ(FixedPathsMethod::kInPlace, host::AvailableFixedPathsMethod(nullptr));
    EXPECT_EQ(0, Run([] { return fs::exists("/opt/usr/x") ? 0 : 1; }).code);
    ExpectNothingMade();
  });
}

TEST_F(InPlace, what_a_killed_run_left_since_the_check_is_removed_with_the_turn) {
  OnMachine([this] {
    LeaveLinksBehind();
    const UniqueFd turn = host::LockFixedPaths();
    ExpectNothingMade();
  });
}

TEST_F(InPlace, nothing_is_made_that_cannot_be_noted) {
  OnMachine([this] {
    const UniqueFd turn = host::LockFixedPaths();
    support::MakeFileWritesFail();
    EXPECT_THAT(ErrorOf([&] { host::InPlaceLinks(turn, root()); }),
                testing::StartsWith("/run/lock/orvelbox-in-place: cannot write: "));
    ExpectNothingMade();
  });
}

TEST_F(InPlace, leftovers_that_were_replaced_since_are_not_removed) {
  OnMachine([this] {
    LeaveLinksBehind();
    fs::remove("/opt/usr");
    fs::create_symlink("/somewhere/else", "/opt/usr");
    EXPECT_EQ(FixedPathsMethod::kNone, host::AvailableFixedPathsMethod(nullptr));
    EXPECT_EQ("/somewhere/else", fs::read_symlink("/opt/usr"));
  });
}

TEST_F(InPlace, a_damaged_lock_file_does_no_harm) {
  for (const char* record : {"{", "[]", "7", R"({"links": 3, "directories": "x"})",
                             R"({"links": [["/etc/hosts", "/x"]], "directories": []})"}) {
    OnMachine([&] {
      fs::create_symlink("/x", "/etc/hosts");
      WriteFile("/run/lock/orvelbox-in-place", record);
      EXPECT_EQ(0, Run([] { return 0; }).code) << record;
      EXPECT_TRUE(IsThere("/etc/hosts")) << record;
      ExpectNothingMade();
    });
  }
}

TEST_F(InPlace, runs_take_turns) {
  OnMachine([this] {
    constexpr int kRuns = 5;
    const fs::path busy = root() / "busy";
    for (int i = 0; i < kRuns; ++i) {
      if (fork() != 0) continue;
      // Creating the directory fails if another run is inside at the same time.
      const auto outcome = Run([&] { return fs::create_directory(busy) && fs::remove(busy) ? 0 : 1; });
      _exit(outcome.signalled ? 99 : outcome.code);
    }
    for (int status = 0; wait(&status) > 0;) EXPECT_EQ(0, status);
    ExpectNothingMade();
  });
}

}  // namespace
}  // namespace host_tests
