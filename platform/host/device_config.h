// What reading and making a device share. For this directory only.
#ifndef ORVEL_PLATFORM_HOST_DEVICE_CONFIG_H_
#define ORVEL_PLATFORM_HOST_DEVICE_CONFIG_H_

#include <filesystem>
#include <optional>
#include <string>

namespace host {

// The "format" of device.json that this program writes and reads.
inline constexpr unsigned long kDeviceFormat = 1;

// `directory` made absolute, without a "/" at its end. Throws DeviceError when that is not possible.
std::filesystem::path AbsoluteDirectory(const std::filesystem::path& directory);

// What is wrong with a read-write application root, or nothing.
std::optional<std::string> FaultOfReadWriteRoot(const std::string& root);

}  // namespace host

#endif
