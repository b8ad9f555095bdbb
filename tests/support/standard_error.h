// What a piece of code writes to the process's standard error, byte by byte.
#ifndef TESTS_SUPPORT_STANDARD_ERROR_H_
#define TESTS_SUPPORT_STANDARD_ERROR_H_

#include <functional>
#include <string>

namespace support {

// Runs `body` with standard error going into a file, and returns what it wrote there. An exception of `body` passes
// through, with standard error back in place.
std::string StandardErrorOf(const std::function<void()>& body);

}  // namespace support

#endif
