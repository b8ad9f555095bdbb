// What every library with a C interface needs: no exception leaves it.
#ifndef ORVEL_PLATFORM_HOST_C_BOUNDARY_H_
#define ORVEL_PLATFORM_HOST_C_BOUNDARY_H_

#include <cerrno>
#include <cstdarg>
#include <string>

namespace host {

// Returns what `action` returns, or `failure` when it throws.
template <typename Result, typename Action>
Result AnswerOr(Result failure, const Action& action) noexcept {
  try {
    return action();
  } catch (...) {
    return failure;
  }
}

// Leaves errno as it was: logging and tracing stand between a failed call and the look at its error.
class KeepErrno {
 public:
  KeepErrno() = default;
  KeepErrno(const KeepErrno&) = delete;
  KeepErrno& operator=(const KeepErrno&) = delete;
  ~KeepErrno() { errno = saved_; }

 private:
  int saved_ = errno;
};

// The text that printf would write, of any length. Throws std::runtime_error when it cannot be formatted.
std::string FormatText(const char* format, va_list arguments) __attribute__((format(printf, 1, 0)));

}  // namespace host

#endif
