// Owner of a file descriptor.
#ifndef BASE_UNIQUE_FD_H_
#define BASE_UNIQUE_FD_H_

#include <unistd.h>

#include <utility>

// Closes the descriptor in its destructor. A negative descriptor means none.
class UniqueFd {
 public:
  explicit UniqueFd(int fd = -1) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  ~UniqueFd() {
    if (fd_ >= 0) close(fd_);
  }

  int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }
  // Closes the descriptor now.
  void Reset() {
    if (fd_ >= 0) close(std::exchange(fd_, -1));
  }

 private:
  int fd_;
};

#endif
