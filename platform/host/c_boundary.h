// Helpers for libraries with a C interface: no exception may leave it.
#ifndef ORVEL_PLATFORM_HOST_C_BOUNDARY_H_
#define ORVEL_PLATFORM_HOST_C_BOUNDARY_H_

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
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

// Restores errno in its destructor: logging and tracing must not change the error of the call before them.
class KeepErrno {
 public:
  KeepErrno() = default;
  KeepErrno(const KeepErrno&) = delete;
  KeepErrno& operator=(const KeepErrno&) = delete;
  ~KeepErrno() { errno = saved_; }

 private:
  int saved_ = errno;
};

// The text that printf would write, of any length. Throws std::runtime_error when formatting fails.
__attribute__((format(printf, 1, 0))) inline std::string FormatText(const char* format, va_list arguments) {
  char* text = nullptr;
  const int length = vasprintf(&text, format, arguments);
  if (length < 0) throw std::runtime_error("the message cannot be formatted");
  const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace host

#endif
