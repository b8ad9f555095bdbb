// The exception type of all code that works on a device.
#ifndef ORVEL_PLATFORM_HOST_DEVICE_ERROR_H_
#define ORVEL_PLATFORM_HOST_DEVICE_ERROR_H_

#include <stdexcept>

namespace host {

// An error that a user can correct. The text is one line that names the thing and the way out.
class DeviceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace host

#endif
