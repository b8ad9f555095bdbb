// In which builds warnings are errors: those of this project's developers, but no others, because other compilers may
// be newer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

// The commands that `make` would run.
std::string CommandsOf(const std::string& make) {
  return support::OutputOf("cd '" SOURCE_DIRECTORY "' && env -u MAKEFLAGS -u WERROR make -n " + make);
}

std::string VariablesOf(const std::string& preset) {
  return support::OutputOf("cd '" SOURCE_DIRECTORY "' && cmake -N --preset " + preset);
}

TEST(Warnings, stop_no_build_that_somebody_makes_by_one_command) {
  for (const char* target : {"build", "test", "demo"}) {
    EXPECT_THAT(CommandsOf(target), HasSubstr("cmake --preset release -DORVEL_WERROR=OFF\n")) << target;
  }
  for (const char* preset : {"release", "sanitize", "valgrind", "coverage", "fuzz", "package"}) {
    const std::string variables = VariablesOf(preset);
    EXPECT_THAT(variables, HasSubstr("CMAKE_BUILD_TYPE=")) << preset;
    EXPECT_THAT(variables, Not(HasSubstr("ORVEL_WERROR"))) << preset;
  }
}

TEST(Warnings, stop_our_own) {
  EXPECT_THAT(CommandsOf("test WERROR=ON"), HasSubstr("cmake --preset release -DORVEL_WERROR=ON\n"));
  EXPECT_THAT(support::ReadFile(SOURCE_DIRECTORY "/.ci/run"), HasSubstr("\nmake test WERROR=ON\n"));
  for (const char* preset : {"dev", "clang"}) {
    EXPECT_THAT(VariablesOf(preset), ContainsRegex("ORVEL_WERROR(:BOOL)?=\"ON\"")) << preset;
  }
}

}  // namespace
