// Runs bodies of tests in child processes.
#include "tests/support/child.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "platform/host/fixed_paths.h"
#include "tests/support/files.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#ifdef ORVEL_COVERAGE
extern "C" void __gcov_dump(void);
#endif

namespace support {

namespace {

constexpr int kFailed = 1;

// Called before a fork: buffered output must not be printed again by the child.
void FlushOutput() {
  std::cout.flush();
  std::fflush(nullptr);
}

// A child does not exit in the ordinary way, so it writes its coverage data itself.
void LeaveCoverageData() {
#ifdef ORVEL_COVERAGE
  __gcov_dump();
#endif
}

// Returns the exit status of the child.
int RunBody(const std::function<void()>& body) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);  // when a test is killed after a timeout, its children end too
  try {
    body();
  } catch (const std::exception& error) {
    ADD_FAILURE() << "An exception left the body: " << error.what();
  }
  FlushOutput();
  LeaveCoverageData();
  return testing::Test::HasFailure() ? kFailed : 0;
}

void ExpectSuccess(const host::ChildOutcome& outcome) {
  if (outcome.signalled) {
    ADD_FAILURE() << "The child was ended by signal " << outcome.code;
  } else if (outcome.code != 0) {
    ADD_FAILURE() << "The child failed with exit status " << outcome.code << ", see above";
  }
}

host::FixedPathsMethod Method(std::string* reason) {
  static std::string found_reason;
  static const host::FixedPathsMethod method = host::AvailableFixedPathsMethod(&found_reason);
  *reason = found_reason;
  return method;
}

}  // namespace

void InFreshProcess(const std::function<void()>& body) {
  FlushOutput();
  const pid_t child = fork();
  ASSERT_GE(child, 0) << "cannot fork";
  if (child == 0) _exit(RunBody(body));
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  host::ChildOutcome outcome;
  outcome.signalled = WIFSIGNALED(status);
  outcome.code = outcome.signalled ? WTERMSIG(status) : WEXITSTATUS(status);
  ExpectSuccess(outcome);
}

void WithFixedPaths(const std::filesystem::path& root, const std::function<void()>& body) {
  std::string reason;
  if (Method(&reason) == host::FixedPathsMethod::kNone) GTEST_SKIP() << reason;
  FlushOutput();
  ExpectSuccess(host::RunWithFixedPaths(root, [&] { return RunBody(body); }));
}

std::string InPlaceNoticeHere() {
  std::string reason;
  return Method(&reason) == host::FixedPathsMethod::kInPlace ? kInPlaceNotice : "";
}

bool GiveUpPrivileges() {
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  const __user_cap_data_struct nothing[_LINUX_CAPABILITY_U32S_3] = {};
  return syscall(SYS_capset, &header, nothing) == 0;
}

void MakeFileWritesFail() {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit none{0, RLIM_INFINITY};
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &none));
}

void ExpectNoLeaks() {
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(0, __lsan_do_recoverable_leak_check()) << "memory was leaked";
#endif
}

std::size_t OpenDescriptors() { return NamesIn("/proc/self/fd").size(); }

}  // namespace support
