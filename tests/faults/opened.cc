// The count of openings.
#include "tests/faults/opened.h"

#include <fcntl.h>

#include <cerrno>

namespace faults {

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
