// The fixed paths without namespaces: symbolic links on the machine itself, for one process at a time.
#ifndef ORVEL_PLATFORM_HOST_FIXED_PATHS_IN_PLACE_H_
#define ORVEL_PLATFORM_HOST_FIXED_PATHS_IN_PLACE_H_

#include <filesystem>
#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace host {

// Why this process cannot work in place, in a few words, or nothing. Removes what a killed run left behind.
std::optional<std::string> ObstacleInPlace();

// This process's turn at the fixed paths, until its end. A child process shares it: the turn ends with the last one.
class InPlaceTurn {
 public:
  // Waits until other processes are done, then removes what a killed one left behind. Throws DeviceError.
  InPlaceTurn();

  int lock_file() const { return lock_.get(); }

 private:
  UniqueFd lock_;
};

// Links at the fixed paths to those of `root`, removed at the object's end together with the directories made for
// them. They are noted in the lock file first, so that the next run can remove them if this one is killed.
class InPlaceLinks {
 public:
  // `turn` must outlive the links. Throws DeviceError when a fixed path exists or a link cannot be made.
  InPlaceLinks(const InPlaceTurn& turn, const std::filesystem::path& root);
  InPlaceLinks(const InPlaceLinks&) = delete;
  InPlaceLinks& operator=(const InPlaceLinks&) = delete;
  ~InPlaceLinks();

 private:
  int lock_file_;
};

}  // namespace host

#endif
