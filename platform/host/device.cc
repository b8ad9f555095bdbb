// The device directory and its configuration. A device is created completely or not at all.
#include "platform/host/device.h"

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <vector>

#include "platform/host/files.h"
#include "platform/host/json.h"
#include "platform/host/package_store.h"
#include "platform/host/paths.h"

namespace host {
namespace {

namespace fs = std::filesystem;

// The "format" that this program writes to device.json and accepts from it.
constexpr unsigned long kDeviceFormat = 1;

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

// `directory` made absolute, without a "/" at its end.
fs::path AbsoluteDirectory(const fs::path& directory) {
  std::error_code error;
  auto absolute = fs::absolute(directory, error).lexically_normal();
  if (error || directory.empty()) throw DeviceError("\"" + directory.string() + "\": no usable directory name");
  return absolute.has_filename() || absolute == absolute.root_path() ? absolute : absolute.parent_path();
}

// What is wrong with a read-write application root; nothing when it is valid.
std::optional<std::string> FaultOfReadWriteRoot(const std::string& root) {
  const fs::path path = root;
  const bool plain = path.lexically_normal().native() == root && path.has_filename();
  if (plain && IsBelow(root, kUserArea)) return std::nullopt;
  return "read_write_root \"" + root + "\" must be a plain absolute path below " + kUserArea + "/";
}

void RequireNothingIn(const fs::path& directory) {
  std::error_code error;
  const auto status = fs::status(directory, error);
  if (status.type() == fs::file_type::not_found) return;
  if (error) ThrowFileError(directory, "use the directory", error.value());
  if (status.type() != fs::file_type::directory) {
    throw DeviceError(directory.string() + ": is no directory; name a new or empty one for the device");
  }
  const bool empty = fs::is_empty(directory, error);
  if (error) ThrowFileError(directory, "list the directory", error.value());
  if (empty) return;
  const bool device = fs::exists(Device{directory}.ConfigFile(), error);
  throw DeviceError(directory.string() + (device ? ": is a device already" : ": is not empty") +
                    "; name a new or empty directory");
}

// The missing directories among `directory` and those above it, the innermost first.
std::vector<fs::path> MissingDirectories(const fs::path& directory) {
  std::error_code ignored;
  std::vector<fs::path> missing;
  for (fs::path path = directory; !fs::exists(path, ignored); path = path.parent_path()) missing.push_back(path);
  return missing;
}

void RemoveAllIn(const fs::path& directory) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(directory, ignored)) fs::remove_all(entry.path(), ignored);
}

void FillDevice(const Device& device, const DeviceConfig& config) {
  for (const char* name : kPlatformAssemblyDirectories) MakeDirectory(device.OnDesk(kPlatformAssemblies) / name);
  const fs::path cache = device.OnDesk(kCacheDirectory);
  MakeDirectory(cache);
  for (const char* name : kCacheFiles) CreateFile(cache / name, kEmptyCache);
  MakeDirectory(device.OnDesk(config.read_write_root));
  CreateFile(device.Log(), "");
  { const PackageStore database(device.Database(), PackageStore::Mode::kCreate); }
  // Written last: a directory without this file is no device.
  CreateFile(device.ConfigFile(),
             JsonText({{"format", kDeviceFormat}, {"read_write_root", config.read_write_root}}, 2) + "\n");
}

}  // namespace

Device CreateDevice(const fs::path& directory, const DeviceConfig& config) {
  Device device{AbsoluteDirectory(directory)};
  if (const auto fault = FaultOfReadWriteRoot(config.read_write_root)) throw DeviceError(*fault);
  RequireNothingIn(device.directory);
  const std::vector<fs::path> made = MissingDirectories(device.directory);
  bool owned = false;  // this call created everything in the directory
  try {
    MakeDirectory(device.directory);
    CreateFile(device.LockFile(), "");  // fails when another process creates a device here at the same time
    owned = true;
    FillDevice(device, config);
  } catch (...) {
    if (owned) RemoveAllIn(device.directory);
    std::error_code ignored;
    for (const fs::path& path : made) fs::remove(path, ignored);  // removes empty directories only
    throw;
  }
  return device;
}

Device OpenDevice(const fs::path& directory) {
  Device device{AbsoluteDirectory(directory)};
  std::error_code ignored;
  if (!fs::exists(device.ConfigFile(), ignored) && !ignored) {
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
    return std::nullopt;  // no name, or a relative one and a deleted working directory
  }
}

}  // namespace host
