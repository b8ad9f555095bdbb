// Helpers for path lists and names, compared with simple versions. The first byte says where the rest is split.
#include <strings.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "morvath/assembly_files.h"
#include "morvath/platform_utils.h"
#include "plugin/duplicates.h"
#include "quarnel_util/quarnel_util.h"
#include "tests/doubles/platform.h"

namespace {

using fuzz::Require;
using fuzz::RequireEqual;

using Texts = std::vector<std::string>;

std::string Joined(const Texts& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += text + "\n";
  return joined;
}

// The elements between colons, found character by character.
Texts PlainSplit(const std::string& paths) {
  Texts elements = {""};
  for (const char c : paths) {
    if (c == ':') {
      elements.emplace_back();
    } else {
      elements.back() += c;
    }
  }
  elements.erase(std::remove(elements.begin(), elements.end(), ""), elements.end());
  return elements;
}

std::string PlainConcat(std::string first, std::string second) {
  if (first.empty() || second.empty()) return first + second;
  while (!first.empty() && first[first.size() - 1] == '/') first.erase(first.size() - 1);
  while (!second.empty() && second[0] == '/') second.erase(0, 1);
  return first + '/' + second;
}

std::string PlainAbsolute(const std::string& path) {
  return path.empty() || path[0] == '/' ? path : PlainConcat(std::filesystem::current_path().string(), path);
}

bool EndsInAnyCase(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && strcasecmp(text.substr(text.size() - end.size()).c_str(), end.c_str()) == 0;
}

std::string PlainStem(std::string name) {
  if (name.size() <= 4) return name;
  if (EndsInAnyCase(name, ".dll") || EndsInAnyCase(name, ".exe")) name.erase(name.size() - 4);
  if (EndsInAnyCase(name, ".ni")) name.erase(name.size() - 3);
  return name;
}

void CheckLists(const std::string& paths) {
  Texts split = {"before"};
  splitPath(paths, split);
  Texts expected = PlainSplit(paths);
  expected.insert(expected.begin(), "before");
  RequireEqual(Joined(expected), Joined(split), "a list is split at its colons");

  Texts absolute = {"before"};
  addPlatformAssembliesPaths(paths, absolute);
  std::transform(expected.begin() + 1, expected.end(), expected.begin() + 1, PlainAbsolute);
  RequireEqual(Joined(expected), Joined(absolute), "the paths of a list are made absolute in their order");
  printAll(paths);
}

void CheckPaths(const std::string& first, const std::string& second) {
  RequireEqual(PlainConcat(first, second), concatPath(first, second), "one slash stands between joined paths");
  RequireEqual(PlainAbsolute(first), getAbsolutePath(first), "a path is made absolute");
  const std::string up_to_nul = first.substr(0, first.find('\0'));
  Require(isDPCDll(first) == (up_to_nul.find("/d.pc/") != std::string::npos), "a DPC path holds the directory's name");
}

void CheckAffixes(const std::string& text, const std::string& affix) {
  Require(startWith(text, affix) == (text.substr(0, affix.size()) == affix), "a text starts with its first part");
  const bool ends = text.size() >= affix.size() && text.substr(text.size() - affix.size()) == affix;
  Require(endWith(text, affix) == ends, "a text ends with its last part");
  Require(startWith(affix + text, affix) && endWith(text + affix, affix), "what is put there is found");
  Require(isCrashed(text) == !(text.rfind("[START]", 0) == 0 && endWith(text, "[END]")), "markers tell a whole text");
}

void CheckNumber(const std::string& text) {
  int value = 0;
  for (const char c : text.substr(0, 4)) value = value * 128 + (c & 127);
  char digits[12];
  itoaForSignalHandler(value, digits);
  RequireEqual(value == 0 ? "" : std::to_string(value), digits, "a number is its digits");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  doubles::Current().keeps_journal = false;
  fuzz::Input input(data, size);
  const std::size_t cut = input.Byte();
  const std::string first = input.Text(cut);
  const std::string second = input.Rest();
  CheckLists(second);
  CheckPaths(first, second);
  CheckAffixes(second, first);
  CheckAffixes(first, second);
  RequireEqual(PlainStem(second), stripNiDLL(second), "a name loses its extension and its native mark");
  CheckNumber(second);
  return 0;
}
