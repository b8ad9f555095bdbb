// Comparisons of the ends of texts, whatever holds them.
#ifndef BASE_AFFIX_H_
#define BASE_AFFIX_H_

#include <string_view>

// Does `text` begin with `prefix`, end with `suffix`, byte for byte? An empty affix always matches.
inline bool HasPrefix(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}
inline bool HasSuffix(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// Is this the name, or the path, of an assembly? Case counts.
inline bool IsAssemblyName(std::string_view name) { return HasSuffix(name, ".dll"); }

#endif
