// readFileToString.
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>

#include "morvath/platform_utils.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

constexpr std::uintmax_t kLargestSize = 128 << 20;

TEST(DurableRead, the_content_is_read_byte_by_byte) {
  const std::string contents[] = {
      "", "abc", "a\nb\n\n", "\r\n", " \t a ", std::string("a\0b\0", 4), "\xFF\x1A", std::string((1 << 20) + 7, 'x')};
  for (const std::string& content : contents) {
    const TempDir root;
    WriteFile(root / "file", content);
    Platform& platform = doubles::Reset();
    EXPECT_EQ(content, readFileToString(root / "file"));
    EXPECT_TRUE(Holds(platform, Steps{}));
  }
}

TEST(DurableRead, a_link_is_followed) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::create_symlink("file", root / "link");
  EXPECT_EQ("abc", readFileToString(root / "link"));
}

TEST(DurableRead, what_cannot_be_read_is_empty_without_a_line) {
  const TempDir root;
  Platform& platform = doubles::Reset();
  EXPECT_EQ("", readFileToString(root / "missing"));
  EXPECT_EQ("", readFileToString(root.path().string()));
  EXPECT_EQ("", readFileToString(""));
  EXPECT_TRUE(platform.misuses.empty());
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(DurableRead, a_pipe_is_empty_and_not_waited_for) {
  support::InFreshProcess([] {
    const TempDir root;
    support::MakePipe(root / "pipe");
    alarm(20);
    EXPECT_EQ("", readFileToString(root / "pipe"));
  });
}

TEST(DurableRead, a_file_that_may_not_be_read_is_empty) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::permissions(root / "file", fs::perms::none);
  support::InFreshProcess([&] {
    ASSERT_TRUE(support::GiveUpPrivileges());
    EXPECT_EQ("", readFileToString(root / "file"));
  });
}

TEST(DurableRead, a_file_of_the_largest_size_is_read) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  fs::resize_file(root / "file", kLargestSize);
  EXPECT_EQ(kLargestSize, readFileToString(root / "file").size());
}

TEST(DurableRead, a_file_that_claims_more_than_the_largest_size_is_empty) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  // The last but one would be small if its upper half were cut off.
  for (const std::uintmax_t size :
       {kLargestSize + 1, std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 3, std::uintmax_t{1} << 40}) {
    fs::resize_file(root / "file", size);
    EXPECT_TRUE(readFileToString(root / "file").empty()) << size;
  }
}

TEST(DurableRead, the_open_file_is_neither_inherited_nor_made_the_terminal) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  interposed::Files().common_open_flags = ~0;
  readFileToString(root / "file");
  EXPECT_NE(0, interposed::Files().common_open_flags & O_CLOEXEC);
  EXPECT_NE(0, interposed::Files().common_open_flags & O_NOCTTY);
}

TEST(DurableRead, a_read_that_a_signal_interrupts_is_repeated) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  interposed::Files().read_errors = {EINTR, EINTR, 0, EINTR};
  EXPECT_EQ("abc", readFileToString(root / "file"));
  EXPECT_TRUE(interposed::Files().read_errors.empty());
}

TEST(DurableRead, what_can_be_read_in_part_only_is_empty) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  interposed::Files().read_errors = {0, EIO};
  EXPECT_EQ("", readFileToString(root / "file"));
}

// Holds a lease on the file and reports that with a byte to `ready`. When another process opens the file, writes
// `last_words` into it and releases the lease.
void HoldLease(const std::string& path, const std::string& last_words, int ready) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  sigset_t request;
  sigemptyset(&request);
  sigaddset(&request, SIGIO);
  sigprocmask(SIG_BLOCK, &request, nullptr);
  const int file = open(path.c_str(), O_RDWR);
  int signal = 0;
  if (fcntl(file, F_SETLEASE, F_WRLCK) != 0 || write(ready, "!", 1) != 1 || sigwait(&request, &signal) != 0) _exit(1);
  _exit(write(file, last_words.data(), last_words.size()) > 0 && fcntl(file, F_SETLEASE, F_UNLCK) == 0 ? 0 : 1);
}

TEST(DurableRead, whoever_holds_a_lease_on_the_file_is_waited_for) {
  const TempDir root;
  WriteFile(root / "file", "old");
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const pid_t holder = fork();
  if (holder == 0) HoldLease(root / "file", "new", ends[1]);
  close(ends[1]);
  char byte = 0;
  const bool held = read(ends[0], &byte, 1) == 1;
  close(ends[0]);
  interposed::Files().common_open_flags = ~0;
  if (held) {
    EXPECT_EQ("new", readFileToString(root / "file"));
    EXPECT_NE(0, interposed::Files().common_open_flags & O_CLOEXEC);
  }
  waitpid(holder, nullptr, 0);
  if (!held) GTEST_SKIP() << "no leases here";
}

TEST(DurableRead, the_wait_for_a_lease_survives_a_signal) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  const int look = 0;
  interposed::Files().open_errors = {EWOULDBLOCK, look, EINTR};
  EXPECT_EQ("abc", readFileToString(root / "file"));
}

TEST(DurableRead, what_is_no_file_is_not_waited_for_either_when_its_opening_would_block) {
  support::InFreshProcess([] {
    const TempDir root;
    support::MakePipe(root / "pipe");
    WriteFile(root / "input", "abc");
    ASSERT_EQ(STDIN_FILENO, dup2(open((root / "input").c_str(), O_RDONLY | O_CLOEXEC), STDIN_FILENO));
    alarm(20);
    for (const std::string& path : {root / "pipe", root / "missing"}) {
      interposed::Files().open_errors = {EWOULDBLOCK};
      EXPECT_EQ("", readFileToString(path));
      EXPECT_NE(-1, fcntl(STDIN_FILENO, F_GETFD)) << "what is no descriptor stands for none";
    }
  });
}

TEST(DurableRead, no_file_stays_open) {
  const TempDir root;
  WriteFile(root / "file", "abc");
  const std::size_t before = support::OpenDescriptors();
  readFileToString(root / "file");
  readFileToString(root / "missing");
  EXPECT_EQ(before, support::OpenDescriptors());
}

TEST(DurableRead, the_descriptor_of_a_closed_standard_input_is_as_good_as_any) {
  support::InFreshProcess([] {
    const TempDir root;
    WriteFile(root / "file", "abc");
    close(STDIN_FILENO);
    const std::size_t before = support::OpenDescriptors();
    errno = EWOULDBLOCK;
    EXPECT_EQ("abc", readFileToString(root / "file"));
    EXPECT_EQ(before, support::OpenDescriptors());
  });
}

}  // namespace
}  // namespace unit
