// Copies, moves and removes whole directory trees, and takes back what was half done when an error comes up.
#ifndef ORVEL_ORVELBOX_DESK_TREE_H_
#define ORVEL_ORVELBOX_DESK_TREE_H_

#include <exception>
#include <filesystem>
#include <string>

#include "platform/host/device.h"

namespace orvelbox {

// Copies the directory `from` to `to`, which may exist already (files of the same name are replaced). Files are
// copied byte by byte with their permissions, symbolic links as links; a directory stays writable for its owner,
// so that the copy can be removed again. Throws host::DeviceError for a device, socket or pipe in the tree, for
// a `to` inside of `from`, and when the system refuses; what was copied until then stays.
void CopyTree(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes what lies at `path`, whole; nothing there is no error. Links are removed, never followed. Throws
// host::DeviceError when the system refuses.
void RemoveTree(const std::filesystem::path& path);

// Moves `from` to `to` on one file system, in one step. Throws host::DeviceError when the system refuses.
void Move(const std::filesystem::path& from, const std::filesystem::path& to);

// Whether something lies at `path`, be it a dangling link.
bool IsThere(const std::filesystem::path& path);

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

// Does `work` and gives its result. When it throws, does `undo` and lets the error go on; when `undo` fails too,
// host::DeviceError tells of both.
template <typename Work, typename Undo>
auto WithRollback(const Work& work, const Undo& undo) {
  try {
    return work();
  } catch (const std::exception& error) {
    try {
      undo();
    } catch (const std::exception& second) {
      throw host::DeviceError(std::string(error.what()) +
                              " (cleaning up failed too, and the next command tries again: " + second.what() + ")");
    }
    throw;
  }
}

}  // namespace orvelbox

#endif
