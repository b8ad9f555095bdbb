// Captures standard error.
#include "tests/support/standard_error.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace support {

namespace {

// Redirects standard error to an unnamed file during its lifetime.
class Redirection {
 public:
  Redirection() : file_(memfd_create("standard error", MFD_CLOEXEC)), original_(dup(STDERR_FILENO)) {
    if (file_ < 0 || original_ < 0) throw std::runtime_error("cannot redirect standard error");
    Flush();
    dup2(file_, STDERR_FILENO);
  }
  ~Redirection() {
    Restore();
    close(original_);
    close(file_);
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

  void Restore() {
    Flush();
    dup2(original_, STDERR_FILENO);
  }

  std::string Text() const {
    std::string text;
    char buffer[4096];
    off_t offset = 0;
    ssize_t count = 0;
    while ((count = pread(file_, buffer, sizeof buffer, offset)) > 0) {
      text.append(buffer, static_cast<std::size_t>(count));
      offset += count;
    }
    return text;
  }

 private:
  static void Flush() {
    std::cerr.flush();
    std::fflush(stderr);
  }

  int file_;
  int original_;
};

}  // namespace

std::string StandardErrorOf(const std::function<void()>& body) {
  Redirection redirection;
  body();
  redirection.Restore();
  return redirection.Text();
}

}  // namespace support
