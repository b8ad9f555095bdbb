// Keeps two changing commands from working on one device at the same time. Readers take no lock.
#ifndef ORVEL_ORVELBOX_DEVICE_LOCK_H_
#define ORVEL_ORVELBOX_DEVICE_LOCK_H_

#include "base/unique_fd.h"
#include "platform/host/device.h"

namespace orvelbox {

// Holds the device's lock until it is destroyed. The lock file stays and names the process that took it last.
class DeviceLock {
 public:
  // Throws host::DeviceError at once, naming the other process, when the lock is held already.
  explicit DeviceLock(const host::Device& device);

 private:
  UniqueFd file_;
};

}  // namespace orvelbox

#endif
