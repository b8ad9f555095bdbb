// Compares the built libraries with their released interfaces by abidiff: symbols, signatures, layouts, virtual tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "tests/support/command.h"

namespace {

using support::OutputOf;
using support::Quoted;

struct Library {
  std::string name;
  std::string file;
};

// How GoogleTest prints a library.
void PrintTo(const Library& library, std::ostream* stream) { *stream << library.name; }

class ReleasedTypes : public testing::TestWithParam<Library> {};

TEST_P(ReleasedTypes, are_those_of_the_library) {
#if !defined(COMPARABLE)
  GTEST_SKIP() << "what is kept is that of release builds by GCC 12";
#endif
  const std::string released = RELEASED_DIRECTORY "/" + GetParam().name + "." PROCESSOR ".abi";
  if (!std::filesystem::exists(released)) GTEST_SKIP() << "nothing is kept for the processor " PROCESSOR;
  if (OutputOf("abidiff --version").find("abidiff: ") != 0) GTEST_SKIP() << "abidiff is not installed";
  EXPECT_EQ(OutputOf("abidiff --fail-no-debug-info --no-added-syms --suppr " +
                     Quoted(RELEASED_DIRECTORY "/foreign_types.ini") + " " + Quoted(released) + " " +
                     Quoted(GetParam().file)),
            "")
      << "tools for the released library break; if that is meant, raise the interface's version and run: "
      << "cmake --build --preset release --target keep_abi";
}

INSTANTIATE_TEST_SUITE_P(Libraries, ReleasedTypes,
                         testing::Values(Library{"libmorvath", MORVATH_LIBRARY},
                                         Library{"libquarnel_util", QUARNEL_UTIL_LIBRARY}),
                         [](const auto& test) { return test.param.name; });

}  // namespace
