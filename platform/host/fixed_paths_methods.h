// The two ways to the fixed paths: a private mount namespace (fixed_paths_mounts.cc), for a child process that will not
// go back, and symbolic links on the machine itself, for one process at a time (fixed_paths_in_place.cc).
#ifndef ORVEL_PLATFORM_HOST_FIXED_PATHS_METHODS_H_
#define ORVEL_PLATFORM_HOST_FIXED_PATHS_METHODS_H_

#include <filesystem>
#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace host {

// Gives the calling process, which must have one thread, a mount namespace of its own in which it may mount; an
// ordinary user gets a user namespace with it (`with_user`), root needs none. Throws DeviceError.
void EnterMountNamespace(bool with_user);

// In such a namespace: lays the fixed paths of `root` over the machine's; those that `root` does not have are not there
// afterwards. The working directory stays the same directory. Throws DeviceError.
void LayFixedPathsOver(const std::filesystem::path& root);

// Finds out whether mounting works at all, in such a namespace that is of no use afterwards. Throws DeviceError.
void TryMounting();

// Gives up the privileges that a user namespace brought to an ordinary user; root keeps them.
void DropNamespacePrivileges();

// Why this process cannot work in place, in a few words, or nothing. Removes what a killed run left behind.
std::optional<std::string> ObstacleInPlace();

// This process's turn at the fixed paths, until the descriptor is closed. A child process shares it: the turn ends with
// the last one. Waits until other processes are done, then removes what a killed one left behind. Throws DeviceError.
UniqueFd TakeTurnInPlace();

// Links at the fixed paths to those of `root`, removed at the object's end together with the directories made for
// them. They are noted in the lock file first, so that the next run can remove them if this one is killed.
class InPlaceLinks {
 public:
  // `turn` must outlive the links. Throws DeviceError when a fixed path exists or a link cannot be made.
  InPlaceLinks(const UniqueFd& turn, const std::filesystem::path& root);
  InPlaceLinks(const InPlaceLinks&) = delete;
  InPlaceLinks& operator=(const InPlaceLinks&) = delete;
  ~InPlaceLinks();

 private:
  int lock_file_;
};

}  // namespace host

#endif
