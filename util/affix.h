// What texts end with, and what paths contain.
#ifndef UTIL_AFFIX_H_
#define UTIL_AFFIX_H_

#include <cstring>
#include <string>
#include <string_view>

// Does `text` end with `suffix`, byte for byte? An empty suffix always matches.
inline bool HasSuffix(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// Is this the name, or the path, of an assembly? Case counts.
inline bool IsAssemblyName(std::string_view name) { return HasSuffix(name, ".dll"); }

// Does `path`, which as a path holds no NUL, contain `part` anywhere?
inline bool Contains(const std::string& path, const char* part) { return std::strstr(path.c_str(), part) != nullptr; }

#endif
