// Tests on absolute paths as texts, without a trailing "/". The file system is not accessed.
#ifndef ORVEL_PLATFORM_HOST_PATHS_H_
#define ORVEL_PLATFORM_HOST_PATHS_H_

#include <string>

#include "base/affix.h"

namespace host {

// Does `path` lie below the directory `root`? Nothing lies below an empty root.
inline bool IsBelow(const std::string& path, const std::string& root) {
  return !root.empty() && path.size() > root.size() && path[root.size()] == '/' && HasPrefix(path, root);
}

inline bool IsAtOrBelow(const std::string& path, const std::string& root) {
  return path == root || IsBelow(path, root);
}

// `path` relative to `root`; unchanged when it does not lie below it.
inline std::string From(const std::string& root, const std::string& path) {
  return IsBelow(path, root) ? path.substr(root.size() + 1) : path;
}

}  // namespace host

#endif
