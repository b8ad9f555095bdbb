// Comparisons of byte strings: prefix, suffix, substring, case. None depends on the locale of the process.
#ifndef BASE_AFFIX_H_
#define BASE_AFFIX_H_

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

// Does `text` begin with `prefix` or end with `suffix`, byte for byte? An empty affix always matches.
inline bool HasPrefix(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}
inline bool HasSuffix(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Are the texts equal apart from the case of ASCII letters?
inline bool EqualsIgnoringCase(std::string_view one, std::string_view other) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [lower](char a, char b) { return lower(a) == lower(b); });
}

// Is this the name, or the path, of an assembly? Case counts.
inline bool IsAssemblyName(std::string_view name) { return HasSuffix(name, ".dll"); }

// Does `path` contain `part` anywhere? Like every path, `path` ends at its first NUL.
inline bool Contains(const std::string& path, const char* part) { return std::strstr(path.c_str(), part) != nullptr; }

#endif
