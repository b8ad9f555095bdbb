// The hardening of the built libraries and programs, read from their headers and symbols.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/command.h"
#include "tests/support/files.h"
#include "tests/support/symbols.h"

namespace {

using support::Imports;
using support::Lines;
using support::Readelf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

// The line of the program header of that type; nothing when there is none.
std::string ProgramHeader(const std::string& file, const std::string& type) {
  for (const std::string& line : Lines(Readelf("--program-headers", file))) {
    if (line.find("  " + type + " ") == 0) return line;
  }
  return "";
}

// Files that need no protection: no array on a stack, or no call with a checked variant.
const std::set<std::string> kWithoutArrays = {"liborvel_pkgmgr_installer.so"};
const std::set<std::string> kWithoutCheckedCalls = {"libquarnel_util.so", "liborvel_aul.so",
                                                    "liborvel_pkgmgr_installer.so", "liborvel_smack.so"};

// File functions that also have a variant for large files.
const std::set<std::string> kNarrowFileFunctions = {
    "__fxstat",        "__lxstat", "__open_2", "__openat_2", "__pread_chk", "__pwrite_chk", "__xstat",   "creat",
    "fallocate",       "fcntl",    "fgetpos",  "fopen",      "freopen",     "fseeko",       "fsetpos",   "fstat",
    "fstatat",         "fstatfs",  "fstatvfs", "ftello",     "ftruncate",   "ftw",          "getrlimit", "glob",
    "lockf",           "lseek",    "lstat",    "mkostemp",   "mkstemp",     "mmap",         "nftw",      "open",
    "openat",          "pread",    "pwrite",   "readdir",    "readdir_r",   "scandir",      "sendfile",  "setrlimit",
    "posix_fallocate", "stat",     "statfs",   "statvfs",    "tmpfile",     "truncate"};
// Functions with 32-bit times on 32-bit processors.
const std::set<std::string> kNarrowTimeFunctions = {"clock_gettime",
                                                    "clock_nanosleep",
                                                    "fstat64",
                                                    "fstatat64",
                                                    "futimens",
                                                    "gettimeofday",
                                                    "gmtime",
                                                    "gmtime_r",
                                                    "localtime",
                                                    "localtime_r",
                                                    "lstat64",
                                                    "mktime",
                                                    "nanosleep",
                                                    "ppoll",
                                                    "pselect",
                                                    "recvmmsg",
                                                    "select",
                                                    "sem_timedwait",
                                                    "stat64",
                                                    "time",
                                                    "timegm",
                                                    "utimensat",
                                                    "utimes",
                                                    "wait4",
                                                    "pthread_cond_timedwait",
                                                    "pthread_cond_clockwait",
                                                    "pthread_mutex_timedlock",
                                                    "sigtimedwait"};

class Hardening : public testing::TestWithParam<std::string> {
 protected:
  const std::string& file() const { return GetParam(); }
  std::string Name() const { return std::filesystem::path(file()).filename().string(); }
};

TEST_P(Hardening, relocations_are_read_only_and_bound_at_once) {
  EXPECT_NE("", ProgramHeader(file(), "GNU_RELRO"));
  EXPECT_THAT(Readelf("--dynamic", file()), HasSubstr("BIND_NOW"));
}

TEST_P(Hardening, the_stack_is_not_executable) {
  const std::string stack = ProgramHeader(file(), "GNU_STACK");
  EXPECT_THAT(stack, HasSubstr(" RW "));
  EXPECT_THAT(stack, Not(HasSubstr(" RWE ")));
}

TEST_P(Hardening, no_segment_is_writable_and_executable) {
  for (const std::string& line : Lines(Readelf("--program-headers", file())))
    EXPECT_THAT(line, Not(HasSubstr(" RWE ")));
}

TEST_P(Hardening, no_code_is_relocated) { EXPECT_THAT(Readelf("--dynamic", file()), Not(HasSubstr("(TEXTREL)"))); }

TEST_P(Hardening, the_file_can_lie_anywhere_in_memory) {
  EXPECT_THAT(Readelf("--file-header", file()), HasSubstr("DYN ("));
}

TEST_P(Hardening, stacks_are_protected) {
  if (kWithoutArrays.count(Name()) == 1) GTEST_SKIP() << "no function there has an array on its stack";
  EXPECT_THAT(Imports(file()), Contains("__stack_chk_fail"));
}

TEST_P(Hardening, calls_of_the_c_library_are_checked) {
#if !defined(FORTIFIED)
  GTEST_SKIP() << "the C library has checks for GCC's optimised builds only, and for none with sanitizers";
#endif
  if (kWithoutCheckedCalls.count(Name()) == 1) GTEST_SKIP() << "nothing is called there that has a checked form";
  EXPECT_THAT(Imports(file()), Contains(testing::EndsWith("_chk")));
}

TEST_P(Hardening, large_files_and_late_dates_are_no_error) {
  std::set<std::string> narrow = kNarrowFileFunctions;
  if (sizeof(long) == 4) narrow.insert(kNarrowTimeFunctions.begin(), kNarrowTimeFunctions.end());
  for (const std::string& name : Imports(file())) {
    EXPECT_EQ(0u, narrow.count(name)) << file() << " calls " << name << ", which fails where numbers pass 32 bits; "
                                      << "compile all of it with _FILE_OFFSET_BITS=64 and _TIME_BITS=64";
  }
}

std::string TestName(const testing::TestParamInfo<std::string>& file) {
  std::string name = std::filesystem::path(file.param).stem().string();
  for (char& letter : name) {
    if (letter == '-') letter = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Built, Hardening, testing::ValuesIn(Lines(support::ReadFile(LIST_OF_BUILT_FILES))), TestName);

// The size recorded in docs/performance.md.

// "BYTES | RELOCATIONS" of the row for that processor; nothing when there is none.
std::string KeptSize(const std::string& processor) {
  const std::string start = "| " + processor + " | ";
  for (const std::string& line : Lines(support::ReadFile(PERFORMANCE_DOCUMENT))) {
    if (line.rfind(start, 0) == 0) return line.substr(start.size());
  }
  return "";
}

TEST(LibrarySize, the_plug_in_grows_no_more_than_a_little_over_what_is_kept) {
#if !defined(KEPT_SIZE_HOLDS)
  GTEST_SKIP() << "the kept sizes are those of release builds by GCC 12";
#endif
  std::istringstream measured(support::OutputOf("'" LIBRARY_SIZE_PROGRAM "' '" BUILD_DIRECTORY "'"));
  long bytes = 0;
  long relocations = 0;
  std::string processor;
  measured >> bytes >> relocations >> std::ws;
  std::getline(measured, processor);
  ASSERT_LT(0, bytes);
  long kept_bytes = 0;
  long kept_relocations = 0;
  ASSERT_EQ(2, std::sscanf(KeptSize(processor).c_str(), "%ld | %ld |", &kept_bytes, &kept_relocations))
      << "no row for \"" << processor << "\" in " PERFORMANCE_DOCUMENT "; it measures " << bytes << " | "
      << relocations;
  const std::string way_out = "; if it is worth it, say so in the change and in the table of " PERFORMANCE_DOCUMENT;
  EXPECT_LE(bytes, kept_bytes + kept_bytes / 20) << "bytes" << way_out;
  EXPECT_LE(relocations, kept_relocations + kept_relocations / 20) << "relocations" << way_out;
}

}  // namespace
