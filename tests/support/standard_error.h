// Captures what code writes to the process's standard error.
#ifndef TESTS_SUPPORT_STANDARD_ERROR_H_
#define TESTS_SUPPORT_STANDARD_ERROR_H_

#include <functional>
#include <string>

namespace support {

// Runs `body` with standard error redirected to a file, and returns that file's content. An exception of `body` passes
// through after standard error is restored.
std::string StandardErrorOf(const std::function<void()>& body);

}  // namespace support

#endif
