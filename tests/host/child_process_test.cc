// Children that fail. What runs at the fixed paths is in fixed_paths_test.
#include "platform/host/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "tests/host/frame.h"

namespace host_tests {
namespace {

TEST(ChildProcess, that_cannot_be_started_is_told) {
  support::InFreshProcess([] {
    const rlimit no_more{0, 0};
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &no_more));
    EXPECT_EQ("cannot make a pipe: " + std::string(std::strerror(EMFILE)), ErrorOf([] {
                host::RunChild(
                    host::HeldSignals(), [] {}, [] { return 0; });
              }));
  });
}

TEST(ChildProcess, that_throws_what_has_no_words_says_so) {
  const auto errors = support::StandardErrorOf([] {
    host::RunChild(
        host::HeldSignals(), [] {}, []() -> int { throw 7; });
    host::RunChild(
        host::HeldSignals(), [] {}, []() -> int { throw std::runtime_error(""); });
  });
  EXPECT_EQ("orvelbox: unknown error\norvelbox: unknown error\n", errors);
}

TEST(ChildProcess, that_somebody_else_waited_for_is_told) {
  support::InFreshProcess([] {
    std::array<int, 2> begun{};
    std::array<int, 2> on{};
    ASSERT_EQ(0, pipe2(begun.data(), O_CLOEXEC));
    ASSERT_EQ(0, pipe2(on.data(), O_CLOEXEC));
    char byte = 0;
    // With SIGCHLD ignored, the kernel itself takes the status of a child that ends.
    std::thread other([&] {
      char told = 0;
      EXPECT_EQ(1, read(begun[0], &told, 1));
      signal(SIGCHLD, SIG_IGN);
      EXPECT_EQ(1, write(on[1], "!", 1));
    });
    const auto body = [&] { return write(begun[1], "!", 1) == 1 && read(on[0], &byte, 1) == 1 ? 0 : 1; };
    EXPECT_EQ("cannot wait for the child process: " + std::string(std::strerror(ECHILD)), ErrorOf([&] {
                host::RunChild(
                    host::HeldSignals(), [] {}, body);
              }));
    other.join();
  });
}

}  // namespace
}  // namespace host_tests
