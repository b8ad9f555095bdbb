// The launcher tools' helpers for the running program, file sizes and digits.
#include <sys/auxv.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

#include "morvath/assembly_files.h"
#include "tests/support/unit_case.h"
#include "tests/unit/allocation_limit.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

// The running program.

class SelfPath : public testing::Test {
 protected:
  SelfPath() { interposed::Files() = {}; }
  ~SelfPath() override { interposed::Files() = {}; }

  static std::string PathOver(const std::string& target) {
    interposed::Files().self_target = target;
    return readSelfPath();
  }
};

TEST_F(SelfPath, it_is_the_absolute_path_of_the_running_program) {
  const std::string path = readSelfPath();
  EXPECT_EQ('/', path.front());
  // Does not use /proc/self/exe, which is memcheck's own program under memcheck.
  const auto* executed = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  EXPECT_TRUE(fs::equivalent(path, executed)) << path << " for " << executed;
  EXPECT_EQ(fs::path("unit_tests"), fs::path(path).filename());
}

TEST_F(SelfPath, a_link_that_cannot_be_read_gives_nothing) {
  interposed::Files().self_path_error = EACCES;
  EXPECT_EQ("", readSelfPath());
}

TEST_F(SelfPath, the_text_ends_where_the_target_ends) {
  for (const char* target : {"/usr/bin/a", "/a", "/usr/bin/program (deleted)", ""}) {
    EXPECT_EQ(target, PathOver(target));
  }
}

TEST_F(SelfPath, a_target_is_cut_after_4095_bytes) {
  for (const std::size_t size : {std::size_t{4094}, std::size_t{4095}}) {
    EXPECT_EQ(std::string(size, 'x'), PathOver(std::string(size, 'x')));
  }
  for (const std::size_t size : {std::size_t{4096}, std::size_t{4097}, std::size_t{10000}}) {
    EXPECT_EQ(std::string(4095, 'x'), PathOver(std::string(size, 'x')));
  }
}

TEST_F(SelfPath, the_text_ends_at_a_nul_inside_the_target) {
  EXPECT_EQ("/usr/bin/a", PathOver(std::string("/usr/bin/a\0b", 12)));
  EXPECT_EQ("", PathOver(std::string("\0/a", 3)));
}

// Sizes.

TEST(FileSize, it_is_the_files_size_in_bytes_also_behind_a_link) {
  const Platform& platform = doubles::Reset();
  const TempDir directory;
  WriteFile(directory / "file", std::string("1\0\n45", 5));
  fs::create_symlink("file", directory / "a link with a long name");
  EXPECT_EQ(5u, getFileSize(directory / "file"));
  EXPECT_EQ(5u, getFileSize(directory / "a link with a long name"));
  EXPECT_TRUE(platform.journal.empty());
}

TEST(FileSize, an_empty_file_and_one_that_is_not_there_are_alike) {
  const TempDir directory;
  WriteFile(directory / "empty");
  fs::create_symlink("nowhere", directory / "dangling");
  EXPECT_EQ(0u, getFileSize(directory / "empty"));
  EXPECT_EQ(0u, getFileSize(directory / "missing"));
  EXPECT_EQ(0u, getFileSize(directory / "dangling"));
  EXPECT_EQ(0u, getFileSize(directory / "empty/below"));
  EXPECT_EQ(0u, getFileSize(""));
}

TEST(FileSize, a_size_beyond_32_bits_is_told_whole) {
  const TempDir directory;
  WriteFile(directory / "sparse");
  for (const std::uintmax_t size :
       {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 1, std::uintmax_t{5'000'000'000}}) {
    fs::resize_file(directory / "sparse", size);
    EXPECT_EQ(size, getFileSize(directory / "sparse"));
  }
}

// Digits.

// The content of a buffer of '?' afterwards, up to its unchanged part.
std::string Written(int value) {
  char buffer[16];
  std::memset(buffer, '?', sizeof buffer);
  itoaForSignalHandler(value, buffer);
  std::size_t size = sizeof buffer;
  while (size > 0 && buffer[size - 1] == '?') --size;
  return {buffer, size};
}

std::string WithNul(const std::string& text) { return text + '\0'; }

TEST(SignalSafeDigits, the_digits_stand_in_order_with_a_nul_behind_and_nothing_else_is_touched) {
  for (const int value : {1, 7, 9, 10, 11, 42, 99, 100, 101, 999, 1000, 65536, 1234567890, 1000000000, INT_MAX}) {
    EXPECT_EQ(WithNul(std::to_string(value)), Written(value));
  }
}

TEST(SignalSafeDigits, zero_gives_no_digit_at_all) { EXPECT_EQ(WithNul(""), Written(0)); }

TEST(SignalSafeDigits, a_negative_value_gives_no_sign_but_characters_below_the_digit_zero) {
  EXPECT_EQ(WithNul("/"), Written(-1));
  EXPECT_EQ(WithNul(",."), Written(-42));
  EXPECT_EQ(11u, Written(INT_MIN).size());
}

TEST(SignalSafeDigits, nothing_is_allocated) {
  char buffer[16] = "";
  EXPECT_FALSE(RunsOutOfMemoryAfter(0, [&] { itoaForSignalHandler(INT_MAX, buffer); }));
  EXPECT_STREQ("2147483647", buffer);
}

// The helper that makes memory run out works.
TEST(AllocationLimit, the_allocation_after_the_last_one_allowed_throws) {
  const auto allocate_twice = [] {
    ::operator delete(::operator new(1));
    ::operator delete(::operator new(1));
  };
  EXPECT_TRUE(RunsOutOfMemoryAfter(0, allocate_twice));
  EXPECT_TRUE(RunsOutOfMemoryAfter(1, allocate_twice));
  EXPECT_FALSE(RunsOutOfMemoryAfter(2, allocate_twice));
}

TEST(SignalSafeDigits, nothing_is_written_into_a_null_buffer) {
  support::InFreshProcess([] { itoaForSignalHandler(42, nullptr); });
}

}  // namespace
}  // namespace unit
