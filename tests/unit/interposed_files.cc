// Interposed file functions. They are exported, so that shared libraries call them too. The checked variants in the C
// library must not be used.
#undef _FORTIFY_SOURCE

#include "tests/unit/interposed_files.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "tests/doubles/platform.h"

namespace interposed {

FileSettings& Files() {
  static FileSettings settings;
  return settings;
}

namespace {

int Change(const char* function, const char* path, uid_t user, gid_t group) {
  doubles::Current().RecordCall(std::string(function) + "(" + path + ", " + std::to_string(user) + ", " +
                                std::to_string(group) + ")");
  errno = Files().owner_change_error;
  return errno == 0 ? 0 : -1;
}

// Must this call fail, according to the settings for the next calls? If so, errno is set.
bool NextFails(std::deque<int>& errors) {
  if (errors.empty()) return false;
  errno = errors.front();
  errors.pop_front();
  return errno != 0;
}

// A call without a file must not reach the kernel.
void ExpectFile(const char* function, int file) {
  if (file < 0) doubles::Current().misuses.emplace_back(function);
}

// Like the kernel: adds no NUL and leaves the rest of the buffer undefined.
ssize_t Give(const std::string& target, char* buffer, std::size_t size) {
  std::memset(buffer, '?', size);
  const std::size_t length = std::min(target.size(), size);
  std::memcpy(buffer, target.data(), length);
  return static_cast<ssize_t>(length);
}

}  // namespace

}  // namespace interposed

#pragma GCC visibility push(default)
extern "C" {

// The headers map stat, stat64, fstat, lstat and open to the C library's widest variants, which differ by processor.
// The calls below are mapped in the same way.
int stat(const char* path, struct stat* status) noexcept {
  interposed::FileSettings& settings = interposed::Files();
  settings.examined.emplace_back(path);
  const int result = fstatat(AT_FDCWD, path, status, 0);
  if (result != 0) return result;
  const auto owner = settings.owners.find(path);
  if (owner != settings.owners.end()) {
    status->st_uid = owner->second.user;
    status->st_gid = owner->second.group;
  }
  return 0;
}

int fstat(int file, struct stat* status) noexcept {
  interposed::ExpectFile("fstat", file);
  return fstatat(file, "", status, AT_EMPTY_PATH);
}

int lstat(const char* path, struct stat* status) noexcept {
  const auto error = interposed::Files().look_errors.find(path);
  if (error == interposed::Files().look_errors.end()) return fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
  errno = error->second;
  return -1;
}

int open(const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list arguments;
    va_start(arguments, flags);
    mode = va_arg(arguments, mode_t);
    va_end(arguments);
  }
  interposed::Files().common_open_flags &= flags;
  return interposed::NextFails(interposed::Files().open_errors) ? -1 : openat(AT_FDCWD, path, flags, mode);
}

ssize_t read(int file, void* data, size_t size) {
  static auto* const next = reinterpret_cast<ssize_t (*)(int, void*, size_t)>(dlsym(RTLD_NEXT, "read"));
  return interposed::NextFails(interposed::Files().read_errors) ? -1 : next(file, data, size);
}

ssize_t write(int file, const void* data, size_t size) {
  static auto* const next = reinterpret_cast<ssize_t (*)(int, const void*, size_t)>(dlsym(RTLD_NEXT, "write"));
  interposed::ExpectFile("write", file);
  std::deque<interposed::WriteStep>& steps = interposed::Files().writes;
  if (steps.empty()) return next(file, data, size);
  const interposed::WriteStep step = steps.front();
  steps.pop_front();
  if (step.error == 0) return next(file, data, std::min(size, step.most));
  errno = step.error;
  return -1;
}

int chown(const char* path, uid_t user, gid_t group) noexcept { return interposed::Change("chown", path, user, group); }

int lchown(const char* path, uid_t user, gid_t group) noexcept {
  return interposed::Change("lchown", path, user, group);
}

ssize_t readlink(const char* path, char* buffer, size_t size) noexcept {
  static auto* const next = reinterpret_cast<ssize_t (*)(const char*, char*, size_t)>(dlsym(RTLD_NEXT, "readlink"));
  const interposed::FileSettings& settings = interposed::Files();
  if (std::strcmp(path, "/proc/self/exe") != 0) return next(path, buffer, size);
  if (settings.self_path_error) {
    std::memset(buffer, '?', size);
    errno = *settings.self_path_error;
    return -1;
  }
  return settings.self_target ? interposed::Give(*settings.self_target, buffer, size) : next(path, buffer, size);
}

}  // extern "C"
#pragma GCC visibility pop
