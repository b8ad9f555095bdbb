// Owner of a file descriptor.
#ifndef UTIL_UNIQUE_FD_H_
#define UTIL_UNIQUE_FD_H_

#include <unistd.h>

#include <utility>

// Closes the descriptor at its end; a negative one stands for none.
class UniqueFd {
 public:
  explicit UniqueFd(int fd) : fd_(fd) {}
  ~UniqueFd() {
    if (fd_ >= 0) close(fd_);
  }
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&&) = delete;

  int get() const { return fd_; }

 private:
  int fd_;
};

#endif
