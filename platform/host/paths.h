// Questions about absolute paths as texts, without "/" at their ends; nothing is looked up.
#ifndef ORVEL_PLATFORM_HOST_PATHS_H_
#define ORVEL_PLATFORM_HOST_PATHS_H_

#include <string>

#include "base/affix.h"

namespace host {

// Does `path` lie below the directory `root`? Nothing lies below an empty one.
inline bool IsBelow(const std::string& path, const std::string& root) {
  return !root.empty() && path.size() > root.size() && path[root.size()] == '/' && HasPrefix(path, root);
}

inline bool IsAtOrBelow(const std::string& path, const std::string& root) {
  return path == root || IsBelow(path, root);
}

// `path` as seen from `root`; one that does not lie below it stays as it is.
inline std::string From(const std::string& root, const std::string& path) {
  return IsBelow(path, root) ? path.substr(root.size() + 1) : path;
}

}  // namespace host

#endif
