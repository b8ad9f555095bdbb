// Symbol names: the expected ones, differences between sets, and messages about differences. No files are read here.
#ifndef TESTS_ABI_NAMES_H_
#define TESTS_ABI_NAMES_H_

#include <string>

#include "tests/support/symbols.h"

namespace abi_guard {

using support::Names;

// The names in `all` that are not in `others`.
Names Without(const Names& all, const Names& others);

// The declaration for a mangled name, as it is written in source code; a C name unchanged.
std::string InWords(const std::string& name);

// The interface's version in a list, and the next versions after a break and after an addition.
struct Versions {
  std::string now;
  std::string after_break;
  std::string after_addition;
};
Versions ReadVersions(const std::string& list);

// A way in which a library and its list differ: what the library did, how to correct it, and whether tools break.
struct Difference {
  const char* verb;
  const char* way_out;
  bool breaks;
};
extern const Difference kLost;
extern const Difference kAdded;
extern const Difference kForgotten;
extern const Difference kUnguarded;

// The differences, each name with the correction; one paragraph per name.
std::string Describe(const Names& names, const std::string& library, const Difference& difference,
                     const Versions& versions);

// The members of `path_manager` (AotPathManager or a subclass) that tools use, tables included.
Names PathManagerMembers(const std::string& path_manager);
// The same for FunctionEntryExitTracker.
Names TrackerMembers();

}  // namespace abi_guard

#endif
