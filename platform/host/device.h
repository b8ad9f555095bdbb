// A device directory: where its parts lie and what its configuration says. No packages (package_store), no mounts
// (fixed_paths).
#ifndef ORVEL_PLATFORM_HOST_DEVICE_H_
#define ORVEL_PLATFORM_HOST_DEVICE_H_

#include <filesystem>
#include <optional>
#include <string>

#include "base/fixed_names.h"
#include "platform/host/device_error.h"

namespace host {

// The environment variable through which the platform's libraries learn their device.
inline constexpr const char* kDeviceVariable = "ORVELBOX_DEVICE";
// The environment variable that asks for a trace file, and names it.
inline constexpr const char* kTraceVariable = "ORVEL_TRACE";

// The layout of a device directory. Nothing here touches the disk.
struct Device {
  std::filesystem::path directory;  // absolute

  std::filesystem::path ConfigFile() const { return directory / "device.json"; }
  std::filesystem::path Database() const { return directory / "packages.db"; }
  std::filesystem::path Log() const { return directory / "log"; }
  std::filesystem::path LoaderRecord() const { return directory / "loader.json"; }
  std::filesystem::path LockFile() const { return directory / "lock"; }
  // The device's own "/": what lies below it appears at the fixed paths while the plug-in runs.
  std::filesystem::path Root() const { return directory / "root"; }
  // Where the device's absolute path `path` lies on the desk, e.g. "/opt/usr/x" -> DIR/root/opt/usr/x.
  std::filesystem::path OnDesk(const std::filesystem::path& path) const { return Root() / path.relative_path(); }
};

// Paths of the device, as the plug-in sees them.
using ::kPlatformAssemblies;
inline constexpr const char* kPlatformAssemblyDirectories[] = {"netcoreapp", "framework", "d.pc", "tvappapi"};
inline constexpr const char* kUserArea = "/opt/usr";
inline constexpr const char* kReleaseMarker = "/etc/release";
// Those under which everything else lies: what a device brings and a desk does not have.
inline constexpr const char* kFixedPaths[] = {kPlatformAssemblies, kUserArea, kReleaseMarker};
inline constexpr const char* kDefaultReadWriteRoot = "/opt/usr/globalapps";

// What device.json holds. Its "format" is checked when it is read.
struct DeviceConfig {
  std::string read_write_root = kDefaultReadWriteRoot;  // absolute, below kUserArea
};

// Makes a new device in `directory` (which must not exist, or be empty): configuration, the four platform assembly
// directories, the cache directory with both cache files ("[START][END]"), the read-write application root, an empty
// package database and log. Throws DeviceError; leaves nothing behind when it fails.
Device CreateDevice(const std::filesystem::path& directory, const DeviceConfig& config = {});

// Opens the device in `directory`. Throws DeviceError when there is none, or when it was made by a newer version.
Device OpenDevice(const std::filesystem::path& directory);

// Reads the configuration. Throws DeviceError when it is damaged, or written by a newer version.
DeviceConfig ReadConfig(const Device& device);

// The device that the environment names, or nothing when kDeviceVariable is unset or empty. Used by the platform's
// libraries; never throws, does not look at the disk.
std::optional<Device> DeviceOfEnvironment();

}  // namespace host

#endif
