// Paths of calls and the count of openings, without dynamic memory.
#include "tests/faults/call_paths.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace faults {

Path PathOf(int file) {
  Path link;
  Path path;
  std::snprintf(link.text, sizeof link.text, "/proc/self/fd/%d", file);
  static auto* const next = Next<ssize_t(const char*, char*, size_t)>("readlink");
  const int error = errno;
  if (next(link.text, path.text, sizeof path.text - 1) < 0) path.text[0] = '\0';
  errno = error;
  return path;
}

Path PathAt(int directory, const char* name) {
  Path path;
  if (directory == AT_FDCWD || *name == '/') {
    std::snprintf(path.text, sizeof path.text, "%s", name);
  } else {
    const Path base = PathOf(directory);
    std::snprintf(path.text, sizeof path.text, "%.4095s/%.255s", base.text, name);
  }
  return path;
}

bool Fails(unsigned kind, const char* call, const char* path) {
  if (Meet(kind, call, path) != Verdict::kFail) return false;
  errno = EIO;
  return true;
}

bool FailsOn(unsigned kind, const char* call, int file) { return Fails(kind, call, PathOf(file).text); }

Openings& OpeningsSoFar() {
  static Openings openings;
  return openings;
}

int Opened(int file) {
  if (file < 0) return file;
  const int error = errno;
  ++OpeningsSoFar().all;
  if ((fcntl(file, F_GETFD) & FD_CLOEXEC) == 0) ++OpeningsSoFar().inheritable;
  errno = error;
  return file;
}

FILE* Opened(FILE* file) {
  if (file != nullptr) Opened(fileno(file));
  return file;
}

DIR* Opened(DIR* directory) {
  if (directory != nullptr) Opened(dirfd(directory));
  return directory;
}

}  // namespace faults
