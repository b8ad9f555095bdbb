// The two methods for the fixed paths: a private mount namespace (fixed_paths_mounts.cc), which the child process keeps
// to its end, and symbolic links on the machine (fixed_paths_in_place.cc), for one process at a time.
#ifndef ORVEL_PLATFORM_HOST_FIXED_PATHS_METHODS_H_
#define ORVEL_PLATFORM_HOST_FIXED_PATHS_METHODS_H_

#include <filesystem>
#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace host {

// Puts the calling process, which must have one thread, into a new mount namespace in which it may mount. `with_user`
// adds a user namespace, which an ordinary user needs and root does not. Throws DeviceError.
void EnterMountNamespace(bool with_user);

// In such a namespace: shows the content of `root` at the fixed paths. A fixed path that `root` does not have is
// missing there. The working directory stays the same. Throws DeviceError.
void MountFixedPaths(const std::filesystem::path& root);

// Tests whether mounting works, in such a namespace, which is unusable afterwards. Throws DeviceError.
void TryMounting();

// Drops the privileges that a user namespace gave to an ordinary user. Root keeps its own.
void DropNamespacePrivileges();

// Why this process cannot work in place, in a few words; nothing when it can. Removes the links of a killed run.
std::optional<std::string> ObstacleInPlace();

// Locks the fixed paths for this process. The lock is released when the last copy of the descriptor is closed, a
// child's included. Waits for other processes, then removes the links of a killed run. Throws DeviceError.
UniqueFd LockFixedPaths();

// Links at the fixed paths to those of `root`. The destructor removes them and the directories made for them. They are
// recorded in the lock file first, so that the next run can remove them if this one is killed.
class InPlaceLinks {
 public:
  // `turn` must outlive this object. Throws DeviceError when a fixed path exists or a link cannot be made.
  InPlaceLinks(const UniqueFd& turn, const std::filesystem::path& root);
  InPlaceLinks(const InPlaceLinks&) = delete;
  InPlaceLinks& operator=(const InPlaceLinks&) = delete;
  ~InPlaceLinks();

 private:
  int lock_file_;
};

}  // namespace host

#endif
