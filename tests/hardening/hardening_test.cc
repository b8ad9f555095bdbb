// How the built libraries and programs are hardened, as their own headers and symbols tell. What they do is not looked
// at here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// What readelf prints about the file.
std::string Readelf(const std::string& options, const std::string& file) {
  return support::OutputOf(READELF_PROGRAM " --wide " + options + " '" + file + "'");
}

// The line of the program header of that type, or nothing.
std::string ProgramHeader(const std::string& file, const std::string& type) {
  for (const std::string& line : Lines(Readelf("--program-headers", file))) {
    if (line.find("  " + type + " ") == 0) return line;
  }
  return "";
}

// The names of the functions that the file takes from elsewhere, without versions.
std::set<std::string> Imports(const std::string& file) {
  std::set<std::string> names;
  for (const std::string& line : Lines(Readelf("--dyn-syms", file))) {
    std::istringstream columns(line);
    std::string number, value, size, type, binding, visibility, section, name;
    columns >> number >> value >> size >> type >> binding >> visibility >> section >> name;
    if (section == "UND") names.insert(name.substr(0, name.find('@')));
  }
  return names;
}

// Files in which there is nothing to protect: no array on a stack; no call that has a checked form.
const std::set<std::string> kWithoutArrays = {"liborvel_pkgmgr_installer.so"};
const std::set<std::string> kWithoutCheckedCalls = {"libquarnel_util.so", "liborvel_aul.so",
                                                    "liborvel_pkgmgr_installer.so", "liborvel_smack.so"};

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

std::string TestName(const testing::TestParamInfo<std::string>& file) {
  std::string name = std::filesystem::path(file.param).stem().string();
  for (char& letter : name) {
    if (letter == '-') letter = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Built, Hardening, testing::ValuesIn(Lines(support::ReadFile(LIST_OF_BUILT_FILES))), TestName);

}  // namespace
