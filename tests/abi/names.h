// Names of symbols: which ones there should be, how they differ, and that in words. No files are read here.
#ifndef TESTS_ABI_NAMES_H_
#define TESTS_ABI_NAMES_H_

#include <set>
#include <string>

namespace abi_guard {

using Names = std::set<std::string>;

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

// What came between a library and its list, each with the way out; one paragraph per name.
std::string TellLost(const Names& names, const std::string& library, const Versions& versions);
std::string TellAdded(const Names& names, const std::string& library, const Versions& versions);
std::string TellForgotten(const Names& names, const std::string& library, const Versions& versions);
std::string TellUnguarded(const Names& names, const std::string& library, const Versions& versions);

// The members of `path_manager` (a subclass of AotPathManager, or it itself) that tools use, tables included.
Names PathManagerMembers(const std::string& path_manager);
// Those of FunctionEntryExitTracker.
Names TrackerMembers();

}  // namespace abi_guard

#endif
