// A device directory: the paths of its parts and its configuration. Packages are in package_store.h, mounts in
// fixed_paths.h.
#ifndef ORVEL_PLATFORM_HOST_DEVICE_H_
#define ORVEL_PLATFORM_HOST_DEVICE_H_

#include <filesystem>
#include <optional>
#include <string>

#include "base/fixed_names.h"
#include "platform/host/device_error.h"  // IWYU pragma: export

namespace host {

// The environment variable that names the device for the platform's libraries.
inline constexpr const char* kDeviceVariable = "ORVELBOX_DEVICE";
// The environment variable that names the trace file; unset: no trace.
inline constexpr const char* kTraceVariable = "ORVEL_TRACE";

// The layout of a device directory. No function here accesses the disk.
struct Device {
  std::filesystem::path directory;  // absolute

  std::filesystem::path ConfigFile() const { return directory / "device.json"; }
  std::filesystem::path Database() const { return directory / "packages.db"; }
  std::filesystem::path Log() const { return directory / "log"; }
  std::filesystem::path LoaderRecord() const { return directory / "loader.json"; }
  std::filesystem::path LockFile() const { return directory / "lock"; }
  // The device's own "/". While the plug-in runs, its content is visible at the fixed paths.
  std::filesystem::path Root() const { return directory / "root"; }
  // The desk's path for the device's absolute path `path`, e.g. "/opt/usr/x" -> DIR/root/opt/usr/x.
  std::filesystem::path OnDesk(const std::filesystem::path& path) const { return Root() / path.relative_path(); }
};

// Paths of the device, as the plug-in sees them.
using ::kPlatformAssemblies;
inline constexpr const char* kPlatformAssemblyDirectories[] = {"netcoreapp", "framework", "d.pc", "tvappapi"};
inline constexpr const char* kUserArea = "/opt/usr";
inline constexpr const char* kReleaseMarker = "/etc/release";
// The paths that contain all others. A device provides them; a desk does not have them.
inline constexpr const char* kFixedPaths[] = {kPlatformAssemblies, kUserArea, kReleaseMarker};
inline constexpr const char* kDefaultReadWriteRoot = "/opt/usr/globalapps";

// The content of device.json. Its "format" is checked when the file is read.
struct DeviceConfig {
  std::string read_write_root = kDefaultReadWriteRoot;  // absolute, below kUserArea
};

// Creates a new device in `directory`, which must be missing or empty: configuration, the four platform assembly
// directories, the cache directory with both cache files ("[START][END]"), the read-write application root, an empty
// package database and log. On failure throws DeviceError and leaves nothing behind.
Device CreateDevice(const std::filesystem::path& directory, const DeviceConfig& config = {});

// Opens the device in `directory`. Throws DeviceError when there is none, or when a newer version created it.
Device OpenDevice(const std::filesystem::path& directory);

// Reads the configuration. Throws DeviceError when it is damaged, or when a newer version wrote it.
DeviceConfig ReadConfig(const Device& device);

// The device that the environment names; nothing when kDeviceVariable is unset or empty. The platform's libraries use
// it. Never throws, does not access the disk.
std::optional<Device> DeviceOfEnvironment();

}  // namespace host

#endif
