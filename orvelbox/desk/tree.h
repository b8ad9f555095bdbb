// Copies, moves and removes whole directory trees, and undoes partial work after an error.
#ifndef ORVEL_ORVELBOX_DESK_TREE_H_
#define ORVEL_ORVELBOX_DESK_TREE_H_

#include <exception>
#include <filesystem>
#include <string>

#include "platform/host/device_error.h"

namespace orvelbox {

// Copies the directory `from` to `to`, which may exist; files of the same name are replaced. Files are copied with
// their permissions, symbolic links as links. A directory stays writable for its owner, so that the copy can be
// removed. Throws host::DeviceError for a device, socket or pipe in the tree, for a `to` inside `from`, and when a
// system call fails; what was copied before then stays.
void CopyTree(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes everything at `path`; it may be missing. Links are removed, not followed. Throws host::DeviceError when a
// system call fails.
void RemoveTree(const std::filesystem::path& path);

// Renames `from` to `to` on one file system, atomically. Throws host::DeviceError when the system call fails.
void Move(const std::filesystem::path& from, const std::filesystem::path& to);

// Does `path` exist? A dangling link exists too.
bool IsThere(const std::filesystem::path& path);

// A new directory below $TMPDIR (or /tmp) for this user alone. The destructor removes it with its content.
class TemporaryDirectory {
 public:
  // Throws host::DeviceError.
  TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory();

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// Calls `work` and returns its result. When it throws, calls `undo` and rethrows; when `undo` fails too, throws a
// host::DeviceError with both errors.
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
