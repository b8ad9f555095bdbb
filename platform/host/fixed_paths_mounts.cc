// Mounts a device's directories at the fixed paths.
#include <dirent.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "platform/host/device.h"
#include "platform/host/files.h"
#include "platform/host/fixed_paths_methods.h"

namespace host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void ThrowSystemError(const std::string& what, int error) {
  throw DeviceError("cannot " + what + ": " + ErrorText(error));
}

void WriteProcFile(const char* file, const std::string& content) {
  const UniqueFd fd(open(file, O_WRONLY | O_CLOEXEC));
  const int error = fd ? WriteAll(fd.get(), content) : errno;
  if (error != 0) ThrowSystemError(std::string("write ") + file, error);
}

std::string SameId(unsigned id) { return std::to_string(id) + " " + std::to_string(id) + " 1"; }

// A path to the file behind a descriptor, valid even when the file's own path now leads elsewhere.
std::string PathOf(const UniqueFd& fd) { return "/proc/self/fd/" + std::to_string(fd.get()); }

bool Bind(const std::string& source, const fs::path& target) {
  return mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0;
}

void MakeMountsPrivate() {
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) ThrowSystemError("detach the mounts", errno);
}

struct CloseDirectory {
  void operator()(DIR* directory) const { closedir(directory); }
};

std::vector<std::string> EntriesOf(const UniqueFd& directory, const fs::path& path) {
  const int listed = openat(directory.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, CloseDirectory> stream(listed < 0 ? nullptr : fdopendir(listed));
  if (!stream) ThrowSystemError("list " + path.string(), errno);
  std::vector<std::string> names;
  while (const dirent* entry = readdir(stream.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") names.push_back(name);
  }
  return names;
}

void CopyLink(const UniqueFd& directory, const std::string& name, const fs::path& copy) {
  std::array<char, 4096> target{};
  const ssize_t length = readlinkat(directory.get(), name.c_str(), target.data(), target.size() - 1);
  if (length > 0) [[maybe_unused]]
    const int result = symlink(target.data(), copy.c_str());
}

bool MakeEmptyFile(const fs::path& file) { return mknod(file.c_str(), S_IFREG | 0644, 0) == 0; }

// Makes the entry `name` of `directory` visible at `copy` as well. Skips what cannot be mounted.
void MirrorEntry(const UniqueFd& directory, const std::string& name, const fs::path& copy) {
  struct stat status {};
  if (fstatat(directory.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (S_ISLNK(status.st_mode)) return CopyLink(directory, name, copy);
  const bool is_directory = S_ISDIR(status.st_mode);
  const bool made = is_directory ? mkdir(copy.c_str(), 0755) == 0 : MakeEmptyFile(copy);
  if (made && !Bind(PathOf(directory) + "/" + name, copy)) std::remove(copy.c_str());
}

void MountTmpfs(const fs::path& target, mode_t mode) {
  std::array<char, 32> options{};
  std::snprintf(options.data(), options.size(), "mode=%04o", static_cast<unsigned>(mode & 07777));
  if (mount("tmpfs", target.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, options.data()) != 0) {
    ThrowSystemError("mount a tmpfs over " + target.string(), errno);
  }
}

// Mounts over a directory of the machine a new one that has the same entries except `omitted`, and to which entries can
// be added.
void Mirror(const fs::path& directory, const std::string& omitted) {
  const UniqueFd original(open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  struct stat status {};
  if (!original || fstat(original.get(), &status) != 0) ThrowSystemError("open " + directory.string(), errno);
  const auto names = EntriesOf(original, directory);
  MountTmpfs(directory, status.st_mode);
  // The ".." of "/" is what is mounted over it; "/" itself is unchanged until this process moves there.
  const bool is_root = directory == "/";
  for (const auto& name : names) {
    if (name != omitted) MirrorEntry(original, name, (is_root ? "/.." : directory) / fs::path(name));
  }
  if (is_root && (chdir("/..") != 0 || chroot(".") != 0)) ThrowSystemError("change to the mirrored \"/\"", errno);
}

// Makes a mirrored directory read-only: a program that writes beside the fixed paths fails instead of losing its files.
void CloseMirror(const fs::path& directory) {
  const unsigned long flags = MS_REMOUNT | MS_BIND | MS_RDONLY | MS_NOSUID | MS_NODEV;
  if (mount(nullptr, directory.c_str(), nullptr, flags, nullptr) != 0) {
    ThrowSystemError("close " + directory.string(), errno);
  }
}

void MakeMountPoint(const fs::path& path, bool is_directory) {
  std::error_code error;
  fs::create_directories(is_directory ? path : path.parent_path(), error);
  if (error) ThrowSystemError("make " + path.string(), error.value());
  if (!is_directory && !MakeEmptyFile(path)) ThrowSystemError("make " + path.string(), errno);
}

// A fixed path and the device's file or directory for it, opened before a mount can hide it.
struct Overlay {
  fs::path target;
  UniqueFd source;  // none: the device does not have it
  bool is_directory = false;
};

Overlay OpenOverlay(const fs::path& root, const fs::path& target) {
  Overlay overlay{target, UniqueFd(open((root / target.relative_path()).c_str(), O_PATH | O_CLOEXEC))};
  struct stat status {};
  overlay.is_directory = overlay.source && fstat(overlay.source.get(), &status) == 0 && S_ISDIR(status.st_mode);
  return overlay;
}

// Mirrors the nearest existing directory above the target and adds the device's entry to it, if there is one.
void MountIntoMirror(const Overlay& overlay) {
  fs::path parent = overlay.target.parent_path();
  std::error_code error;
  while (!fs::is_directory(parent, error)) parent = parent.parent_path();
  const fs::path rest = overlay.target.lexically_relative(parent);
  parent = fs::canonical(parent);
  Mirror(parent, *rest.begin());
  if (overlay.source) MakeMountPoint(parent / rest, overlay.is_directory);
  CloseMirror(parent);
}

// Does not mount on a link: it may belong to a process that works in place, and disappear.
void MountOverlay(const Overlay& overlay) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(overlay.target, error);
  if (fs::is_symlink(status) || fs::exists(status) != static_cast<bool>(overlay.source)) MountIntoMirror(overlay);
  if (overlay.source && !Bind(PathOf(overlay.source), overlay.target)) {
    ThrowSystemError("mount at " + overlay.target.string(), errno);
  }
}

// Restores the working directory after mounts changed what its path leads to.
class WorkingDirectory {
 public:
  WorkingDirectory() : directory_(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)), path_(Path()) {}

  // Returns by path if the path still leads there, so that ".." continues within the new mounts.
  void GoBack() const {
    const UniqueFd by_path(open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const UniqueFd& target = by_path && SameFile(by_path, directory_) ? by_path : directory_;
    if (target && fchdir(target.get()) != 0) ThrowSystemError("go back to " + path_.string(), errno);
  }

 private:
  // Empty when the directory was deleted.
  static fs::path Path() {
    std::error_code gone;
    return fs::current_path(gone);
  }
  static bool SameFile(const UniqueFd& one, const UniqueFd& other) {
    struct stat a {};
    struct stat b {};
    return fstat(one.get(), &a) == 0 && fstat(other.get(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
  }

  UniqueFd directory_;
  fs::path path_;
};

}  // namespace

void EnterMountNamespace(bool with_user) {
  const unsigned uid = geteuid();
  const unsigned gid = getegid();
  prctl(PR_SET_DUMPABLE, 1);  // after a change of user, a process may write in its own /proc only when it is dumpable
  if (unshare(CLONE_NEWNS | (with_user ? CLONE_NEWUSER : 0)) != 0) {
    ThrowSystemError(with_user ? "make a user namespace" : "make a mount namespace", errno);
  }
  if (!with_user) return;
  WriteProcFile("/proc/self/setgroups", "deny");  // the kernel requires this before it accepts a group
  WriteProcFile("/proc/self/uid_map", SameId(uid));
  WriteProcFile("/proc/self/gid_map", SameId(gid));
}

void MountFixedPaths(const fs::path& root) {
  const WorkingDirectory working_directory;
  std::vector<Overlay> overlays;
  for (const char* target : kFixedPaths) overlays.push_back(OpenOverlay(root, target));
  MakeMountsPrivate();
  for (const auto& overlay : overlays) MountOverlay(overlay);
  working_directory.GoBack();
}

void TryMounting() {
  MakeMountsPrivate();
  MountTmpfs("/", 0755);
}

void DropNamespacePrivileges() {
  if (geteuid() == 0) return;
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
  if (syscall(SYS_capset, &header, none) != 0) ThrowSystemError("drop the privileges of the namespace", errno);
}

}  // namespace host
