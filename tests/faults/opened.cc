// The count of openings.
#include "tests/faults/opened.h"

#include <fcntl.h>

#include <cerrno>

namespace faults {

Openings& OpeningsSoFar() {
  static Openings openings;
  return openings;
}

void NoteOpened(int file) {
  if (file < 0) return;
  const int error = errno;
  ++OpeningsSoFar().all;
  if ((fcntl(file, F_GETFD) & FD_CLOEXEC) == 0) ++OpeningsSoFar().inheritable;
  errno = error;
}

}  // namespace faults
