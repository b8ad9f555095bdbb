// Directory trees: copying, removing, moving, temporary ones.
#include "orvelbox/desk/tree.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "base/unique_fd.h"
#include "orvelbox/desk/progress.h"
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// The permissions that are copied: not set-user-id and the like.
constexpr fs::perms kPlainPermissions = fs::perms::all;

void CopyEntry(const fs::path& from, const fs::path& to);

// The standard library's own copy reports a full disk as an "Input/output error".
void CopyContent(const fs::path& from, const fs::path& to) {
  const UniqueFd source(open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  if (!source) host::ThrowFileError(from, "read", errno);
  const UniqueFd target(open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (!target) host::ThrowFileError(to, "write", errno);
  std::vector<char> block(std::size_t{1} << 18);
  for (;;) {
    const ssize_t length = read(source.get(), block.data(), block.size());
    if (length == 0) return;
    if (length < 0) host::ThrowFileError(from, "read", errno);
    const int error = host::WriteAll(target.get(), {block.data(), static_cast<std::size_t>(length)});
    if (error != 0) host::ThrowFileError(to, "write", error);
  }
}

void CopyFile(const fs::path& from, const fs::path& to) {
  CopyContent(from, to);
  fs::permissions(to, fs::status(from).permissions() & kPlainPermissions);
  Activity::CountFile();
}

void CopyLink(const fs::path& from, const fs::path& to) {
  fs::remove(to);
  fs::copy_symlink(from, to);
}

void CopyDirectory(const fs::path& from, const fs::path& to) {
  fs::create_directory(to);
  for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
    CopyEntry(entry.path(), to / entry.path().filename());
  }
  fs::permissions(to, (fs::status(from).permissions() & kPlainPermissions) | fs::perms::owner_all);
}

void CopyEntry(const fs::path& from, const fs::path& to) {
  switch (fs::symlink_status(from).type()) {
    case fs::file_type::regular:
      return CopyFile(from, to);
    case fs::file_type::symlink:
      return CopyLink(from, to);
    case fs::file_type::directory:
      return CopyDirectory(from, to);
    default:
      throw host::DeviceError(from.string() + ": is no file, directory or symbolic link; take it out of the directory");
  }
}

bool IsInside(const fs::path& inner, const fs::path& outer) {
  const fs::path from = fs::canonical(outer);
  const fs::path to = fs::weakly_canonical(inner);
  return std::mismatch(from.begin(), from.end(), to.begin(), to.end()).first == from.end();
}

}  // namespace

void CopyTree(const fs::path& from, const fs::path& to) {
  host::WithFileErrors(from, "copy", [&] {
    if (IsInside(to, from)) {
      throw host::DeviceError(from.string() + ": holds the device itself, which would be copied into itself; " +
                              "use a device outside of it with --device");
    }
    CopyDirectory(from, to);
  });
}

void RemoveTree(const fs::path& path) {
  host::WithFileErrors(path, "remove", [&] { fs::remove_all(path); });
}

void Move(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  if (error) host::ThrowFileError(from, "move", error.value());
}

bool IsThere(const fs::path& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored).type() != fs::file_type::not_found;
}

TemporaryDirectory::TemporaryDirectory() {
  std::error_code ignored;
  const fs::path temporary = fs::temp_directory_path(ignored);
  std::string name = ((ignored ? fs::path("/tmp") : fs::canonical(temporary)) / "orvelbox-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) host::ThrowFileError(name, "make the directory", errno);
  path_ = name;
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace orvelbox
