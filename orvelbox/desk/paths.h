// Questions about paths as texts; nothing is looked up.
#ifndef ORVEL_ORVELBOX_DESK_PATHS_H_
#define ORVEL_ORVELBOX_DESK_PATHS_H_

#include <string>

#include "base/affix.h"

namespace orvelbox {

// Does `path` lie below the directory `root`, which has no "/" at its end? Nothing lies below an empty one.
inline bool IsBelow(const std::string& path, const std::string& root) {
  return !root.empty() && path.size() > root.size() && path[root.size()] == '/' && HasPrefix(path, root);
}

// `path` as seen from `root`; one that does not lie below it stays as it is.
inline std::string From(const std::string& root, const std::string& path) {
  return IsBelow(path, root) ? path.substr(root.size() + 1) : path;
}

}  // namespace orvelbox

#endif
