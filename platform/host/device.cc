// Reading a device: its directory and its configuration. Making one is device_creation.cc's.
#include "platform/host/device.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "platform/host/device_config.h"
#include "platform/host/files.h"
#include "platform/host/json.h"
#include "platform/host/paths.h"

namespace host {
namespace {

[[noreturn]] void ThrowDamaged(const Device& device, const std::string& what) {
  throw DeviceError(device.ConfigFile().string() + ": damaged (" + what +
                    "); restore it, or make a new device with: orvelbox init");
}

void CheckFormat(const Device& device, const Json& config) {
  const auto format = config.find("format");
  if (format == config.end() || !format->is_number_unsigned()) ThrowDamaged(device, "\"format\" is no number");
  const auto number = format->get<unsigned long>();
  if (number > kDeviceFormat) {
    throw DeviceError(device.directory.string() + ": made by a newer orvelbox (format " + std::to_string(number) +
                      ", this one reads " + std::to_string(kDeviceFormat) +
                      "); use that version, or another device with --device");
  }
  if (number < kDeviceFormat) ThrowDamaged(device, "there is no format " + std::to_string(number));
}

}  // namespace

std::filesystem::path AbsoluteDirectory(const std::filesystem::path& directory) {
  std::error_code error;
  auto absolute = std::filesystem::absolute(directory, error).lexically_normal();
  if (error || directory.empty()) throw DeviceError("\"" + directory.string() + "\": no usable directory name");
  return absolute.has_filename() || absolute == absolute.root_path() ? absolute : absolute.parent_path();
}

std::optional<std::string> FaultOfReadWriteRoot(const std::string& root) {
  const std::filesystem::path path = root;
  const bool plain = path.lexically_normal().native() == root && path.has_filename();
  if (plain && IsBelow(root, kUserArea)) return std::nullopt;
  return "read_write_root \"" + root + "\" must be a plain absolute path below " + kUserArea + "/";
}

Device OpenDevice(const std::filesystem::path& directory) {
  Device device{AbsoluteDirectory(directory)};
  std::error_code ignored;
  if (!std::filesystem::exists(device.ConfigFile(), ignored) && !ignored) {
    throw DeviceError(device.directory.string() +
                      ": no device there; make one with: orvelbox init, or name another with --device");
  }
  ReadConfig(device);
  return device;
}

DeviceConfig ReadConfig(const Device& device) {
  const auto json = ParseJson(ReadFile(device.ConfigFile()));
  if (!json.is_object()) ThrowDamaged(device, "it is no JSON object");
  CheckFormat(device, json);
  const auto root = json.find("read_write_root");
  if (root == json.end() || !root->is_string()) ThrowDamaged(device, "\"read_write_root\" is no text");
  DeviceConfig config{root->get<std::string>()};
  if (const auto fault = FaultOfReadWriteRoot(config.read_write_root)) ThrowDamaged(device, *fault);
  return config;
}

std::optional<Device> DeviceOfEnvironment() {
  const char* directory = std::getenv(kDeviceVariable);
  if (directory == nullptr) return std::nullopt;
  try {
    return Device{AbsoluteDirectory(directory)};
  } catch (const std::exception&) {
    return std::nullopt;  // no name, or a relative one in a working directory that is gone
  }
}

}  // namespace host
