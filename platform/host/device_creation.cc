// Making a device directory, whole or not at all.
#include <fcntl.h>

#include <cerrno>
#include <nlohmann/json.hpp>
#include <vector>

#include "platform/host/device.h"
#include "platform/host/device_config.h"
#include "platform/host/files.h"
#include "platform/host/json.h"
#include "platform/host/package_store.h"

namespace host {
namespace {

namespace fs = std::filesystem;

void MakeDirectories(const fs::path& directory) {
  std::error_code error;
  fs::create_directories(directory, error);
  if (error) ThrowFileError(directory, "make the directory", error.value());
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

// Takes back what was made so far unless the device was completed.
class Undo {
 public:
  explicit Undo(const fs::path& directory) : directory_(directory) {
    std::error_code ignored;
    for (fs::path path = directory; !fs::exists(path, ignored); path = path.parent_path()) {
      made_.push_back(path);
    }
  }
  Undo(const Undo&) = delete;
  Undo& operator=(const Undo&) = delete;
  ~Undo() {
    std::error_code ignored;
    if (owned_) {
      for (const auto& entry : fs::directory_iterator(directory_, ignored)) fs::remove_all(entry.path(), ignored);
    }
    if (!completed_) {
      for (const auto& path : made_) fs::remove(path, ignored);  // only when empty
    }
  }

  // From here on everything in the directory is ours.
  void Owned() { owned_ = true; }
  void Completed() {
    owned_ = false;
    completed_ = true;
  }

 private:
  fs::path directory_;
  std::vector<fs::path> made_;
  bool owned_ = false;
  bool completed_ = false;
};

void MakeRoot(const Device& device, const DeviceConfig& config) {
  for (const char* name : kPlatformAssemblyDirectories) MakeDirectories(device.OnDesk(kPlatformAssemblies) / name);
  const fs::path cache = device.OnDesk(kCacheDirectory);
  MakeDirectories(cache);
  for (const char* name : kCacheFiles) CreateFile(cache / name, kEmptyCache);
  MakeDirectories(device.OnDesk(config.read_write_root));
}

void MakeDatabase(const Device& device) { const PackageStore database(device.Database(), PackageStore::Mode::kCreate); }

std::string ConfigText(const DeviceConfig& config) {
  return JsonText({{"format", kDeviceFormat}, {"read_write_root", config.read_write_root}}, 2) + "\n";
}

}  // namespace

Device CreateDevice(const fs::path& directory, const DeviceConfig& config) {
  Device device{AbsoluteDirectory(directory)};
  if (const auto fault = FaultOfReadWriteRoot(config.read_write_root)) throw DeviceError(*fault);
  RequireNothingIn(device.directory);
  Undo undo(device.directory);
  MakeDirectories(device.directory);
  CreateFile(device.LockFile(), "");  // fails when another process makes a device here at the same time
  undo.Owned();
  MakeRoot(device, config);
  CreateFile(device.Log(), "");
  MakeDatabase(device);
  CreateFile(device.ConfigFile(), ConfigText(config));  // last: a directory without it is no device
  undo.Completed();
  return device;
}

}  // namespace host
