// Names of symbols: which ones there should be, how they differ, and that in words. No files are read here.
#ifndef TESTS_ABI_NAMES_H_
#define TESTS_ABI_NAMES_H_

#include <string>

#include "tests/support/symbols.h"

namespace abi_guard {

using support::Names;

// The names in `all` that are not in `others`.
Names Without(const Names& all, const Names& others);

// The declaration behind a mangled name, as a person would write it; a name of C as it is.
std::string InWords(const std::string& name);

// The interface's version in the text of a list, and the versions that follow a break and an addition.
struct Versions {
  std::string now;
  std::string after_break;
  std::string after_addition;
};
Versions ReadVersions(const std::string& list);

// A way in which a library and its list differ: what the library did, the way out, and whether tools break.
struct Difference {
  const char* verb;
  const char* way_out;
  bool breaks;
};
extern const Difference kLost;
extern const Difference kAdded;
extern const Difference kForgotten;
extern const Difference kUnguarded;

// What differs, each name with the way out; one paragraph per name.
std::string Tell(const Names& names, const std::string& library, const Difference& difference,
                 const Versions& versions);

// The members of `path_manager` (a subclass of AotPathManager, or it itself) that tools use, tables included.
Names PathManagerMembers(const std::string& path_manager);
// Those of FunctionEntryExitTracker.
Names TrackerMembers();

}  // namespace abi_guard

#endif
