// Sets of symbol names, and messages about them.
#include "tests/abi/names.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>

#include "tests/support/files.h"

namespace abi_guard {
namespace {

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
    text.replace(at, what.size(), by);
  }
  return text;
}

}  // namespace

Names Without(const Names& all, const Names& others) {
  Names rest;
  std::set_difference(all.begin(), all.end(), others.begin(), others.end(), std::inserter(rest, rest.end()));
  return rest;
}

std::string InWords(const std::string& name) {
  if (name.rfind("_Z", 0) != 0) return name;  // the demangler would read single letters as types
  int failed = 0;
  const std::unique_ptr<char, decltype(&std::free)> words(abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &failed),
                                                          std::free);
  if (failed != 0) return name;
  return Replaced(words.get(), "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >",
                  "std::string");
}

Versions ReadVersions(const std::string& list) {
  for (const std::string& line : support::Lines(list)) {
    unsigned major = 0;
    unsigned minor = 0;
    if (std::sscanf(line.c_str(), "# interface %u.%u", &major, &minor) != 2) continue;
    const std::string same = std::to_string(major) + ".";
    return {same + std::to_string(minor), std::to_string(major + 1) + ".0", same + std::to_string(minor + 1)};
  }
  return {};
}

const Difference kLost = {" lost ",
                          ", which is part of the interface: tools that use it would no longer load. Bring it back; to "
                          "give it up, take it off the library's list and out of tests/abi",
                          true};
const Difference kAdded = {" shows ", ", which is not on its list. Hide it; to make it part of the interface, list it",
                           false};
const Difference kForgotten = {" hides ",
                               ", which its source exports: it is not on the library's list. Take ORVEL_EXPORT away "
                               "from it; or list it",
                               false};
const Difference kUnguarded = {" has a new name on its list, ",
                               ", whose prototype is not kept. Mention it in tests/abi", false};

std::string Describe(const Names& names, const std::string& library, const Difference& difference,
                     const Versions& versions) {
  const std::string raise = std::string(", and raise the ") + (difference.breaks ? "first" : "second") +
                            " number of \"# interface\" in plugin/exported_symbols.txt (" + versions.now + " -> " +
                            (difference.breaks ? versions.after_break : versions.after_addition) + ").\n";
  std::string text;
  for (const std::string& name : names) {
    text += library + difference.verb + InWords(name) + " [" + name + "]" + difference.way_out + raise;
  }
  return text;
}

Names PathManagerMembers(const std::string& path_manager) {
  const std::string type = std::to_string(path_manager.size()) + path_manager;
  Names names = {"_ZTV" + type, "_ZTI" + type, "_ZTS" + type};
  for (const char* member : {"C1Ev", "C2Ev", "D0Ev", "D1Ev", "D2Ev"}) names.insert("_ZN" + type + member);
  if (path_manager != "AotPathManager") names.insert("_ZN" + type + "18GetDestinationPathB5cxx11Ev");
  return names;
}

Names TrackerMembers() {
  const std::string type = "_ZN24FunctionEntryExitTracker";
  return {type + "C1EPKcS1_i", type + "C2EPKcS1_i", type + "D1Ev", type + "D2Ev"};
}

}  // namespace abi_guard
