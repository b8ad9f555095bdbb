// Errors of the host platform and of orvelbox.
#ifndef TESTS_SUPPORT_DEVICE_ERROR_H_
#define TESTS_SUPPORT_DEVICE_ERROR_H_

#include <functional>
#include <string>

#include "platform/host/device_error.h"

namespace support {

// The text of the DeviceError that `action` throws; "no error" when it throws none.
inline std::string ErrorOf(const std::function<void()>& action) {
  try {
    action();
    return "no error";
  } catch (const host::DeviceError& error) {
    return error.what();
  }
}

}  // namespace support

#endif
