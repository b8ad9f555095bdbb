// A temporary directory.
#ifndef ORVEL_ORVELBOX_DESK_SCRATCH_DIRECTORY_H_
#define ORVEL_ORVELBOX_DESK_SCRATCH_DIRECTORY_H_

#include <filesystem>

namespace orvelbox {

// A new directory below $TMPDIR (or /tmp) for this user alone, removed with all it holds at the end.
class ScratchDirectory {
 public:
  // Throws host::DeviceError.
  ScratchDirectory();
  ScratchDirectory(const ScratchDirectory&) = delete;
  ScratchDirectory& operator=(const ScratchDirectory&) = delete;
  ~ScratchDirectory();

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace orvelbox

#endif
