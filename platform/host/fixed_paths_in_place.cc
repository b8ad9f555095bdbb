// The in-place method. The lock file lists, as JSON, what is made at the fixed paths; it is empty between runs.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "platform/host/device.h"
#include "platform/host/files.h"
#include "platform/host/fixed_paths_methods.h"
#include "platform/host/json.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// What a run creates: links (fixed path to target) and the directories above them, the outermost first.
struct Made {
  std::vector<std::pair<std::string, std::string>> links;
  std::vector<std::string> directories;
};

fs::path LockFilePath() {
  constexpr const char* kName = "orvelbox-in-place";
  return access("/run/lock", W_OK) == 0 ? fs::path("/run/lock") / kName : fs::path("/tmp") / kName;
}

// Opens the lock file in a directory that all users can write to; refuses a file of another user. Throws DeviceError.
UniqueFd OpenLockFile() {
  const fs::path path = LockFilePath();
  UniqueFd fd(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!fd) ThrowFileError(path, "open", errno);
  struct stat status {};
  if (fstat(fd.get(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid()) return fd;
  throw DeviceError(path.string() + ": is not root's own file; remove it");
}

Made ReadRecord(int lock_file) try {
  const Json json = ParseJson(ReadFromStart(lock_file));
  return {json.at("links"), json.at("directories")};
} catch (const Json::exception&) {
  return {};  // empty, or incomplete because nothing was made yet
}

void WriteRecord(int lock_file, const Made& made) {
  const std::string text = Json({{"links", made.links}, {"directories", made.directories}}).dump();
  int error = lseek(lock_file, 0, SEEK_SET) == 0 && ftruncate(lock_file, 0) == 0 ? 0 : errno;
  if (error == 0) error = WriteAll(lock_file, text);
  if (error == 0) return;
  [[maybe_unused]] const int result = ftruncate(lock_file, 0);
  ThrowFileError(LockFilePath(), "write", error);
}

bool IsFixedPath(const std::string& path) {
  return std::find(std::begin(kFixedPaths), std::end(kFixedPaths), path) != std::end(kFixedPaths);
}

// Removes what the lock file lists, if it is still what was made, and empties the file.
void RemoveRecorded(int lock_file) {
  const Made made = ReadRecord(lock_file);
  std::error_code ignored;
  for (const auto& [path, target] : made.links) {
    if (IsFixedPath(path) && fs::read_symlink(path, ignored) == target) unlink(path.c_str());
  }
  for (auto path = made.directories.rbegin(); path != made.directories.rend(); ++path) rmdir(path->c_str());
  [[maybe_unused]] const int result = ftruncate(lock_file, 0);
}

fs::path NearestDirectory(fs::path path) {
  std::error_code ignored;
  while (!fs::is_directory(path, ignored)) path = path.parent_path();
  return path;
}

std::optional<std::string> ObstacleAtFixedPaths() {
  for (const fs::path path : kFixedPaths) {
    std::error_code ignored;
    if (fs::symlink_status(path, ignored).type() != fs::file_type::not_found) return path.string() + " exists already";
    const fs::path parent = NearestDirectory(path.parent_path());
    if (access(parent.c_str(), W_OK) != 0) return parent.string() + " cannot be written";
  }
  return std::nullopt;
}

// What must be created for `root`.
Made Plan(const fs::path& root) {
  Made made;
  std::error_code ignored;
  for (const fs::path path : kFixedPaths) {
    const fs::path target = root / path.relative_path();
    if (!fs::exists(target, ignored)) continue;
    made.links.emplace_back(path, target);
    fs::path above = NearestDirectory(path.parent_path());
    for (const auto& name : path.parent_path().lexically_relative(above)) {
      above /= name;
      if (name != ".") made.directories.push_back(above);
    }
  }
  return made;
}

void Make(const Made& made) {
  for (const auto& directory : made.directories) {
    if (mkdir(directory.c_str(), 0755) != 0) ThrowFileError(directory, "make the directory", errno);
  }
  for (const auto& [path, target] : made.links) {
    if (symlink(target.c_str(), path.c_str()) != 0) ThrowFileError(path, "make the link", errno);
  }
}

}  // namespace

std::optional<std::string> ObstacleInPlace() try {
  const UniqueFd lock = OpenLockFile();
  // Another run holds the lock. It passed these checks and removes its links before it releases the lock.
  if (flock(lock.get(), LOCK_EX | LOCK_NB) != 0) return std::nullopt;
  RemoveRecorded(lock.get());
  return ObstacleAtFixedPaths();
} catch (const DeviceError& error) {
  return error.what();
}

UniqueFd LockFixedPaths() {
  UniqueFd lock = OpenLockFile();
  while (flock(lock.get(), LOCK_EX) != 0) {
    if (errno != EINTR) ThrowFileError(LockFilePath(), "lock", errno);
  }
  RemoveRecorded(lock.get());
  return lock;
}

InPlaceLinks::InPlaceLinks(const UniqueFd& turn, const fs::path& root) : lock_file_(turn.get()) {
  if (const auto obstacle = ObstacleAtFixedPaths()) {
    throw DeviceError("cannot work in place: " + *obstacle + "; move it away, or allow namespaces");
  }
  const Made made = Plan(root);
  WriteRecord(lock_file_, made);
  try {
    Make(made);
  } catch (const DeviceError&) {
    RemoveRecorded(lock_file_);
    throw;
  }
}

InPlaceLinks::~InPlaceLinks() { RemoveRecorded(lock_file_); }

}  // namespace host
