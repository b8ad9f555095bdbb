// The packages of the device that the environment names, for the platform's libraries, and the records that these
// return as untyped handles.
#ifndef ORVEL_PLATFORM_HOST_INSTALLED_PACKAGES_H_
#define ORVEL_PLATFORM_HOST_INSTALLED_PACKAGES_H_

#include <optional>
#include <string>
#include <vector>

#include "platform/host/c_boundary.h"
#include "platform/host/package_store.h"

namespace host {

// An application and the parts of its package's record that its own record includes.
struct InstalledApplication {
  Application application;
  std::string package_id;
  std::string package_root;
};

// Nothing when there is no such package, or no device. These functions throw DeviceError when the database fails.
std::optional<Package> FindInstalledPackage(const std::string& package_id);

// Nothing when there is no such application, or no device.
std::optional<InstalledApplication> FindInstalledApplication(const std::string& app_id);

// Every application that has all of the metadata entries, in the order of PackageStore. Throws DeviceError also when
// there is no device.
std::vector<InstalledApplication> FindInstalledApplications(const std::vector<MetadataEntry>& entries);

// Creates a record from what `find` returns for `id`, and a handle to it. Returns 0, or -1.
template <typename Find>
int MakeRecord(const char* id, void** handle, const Find& find) {
  if (id == nullptr || handle == nullptr) return -1;
  return AnswerOr(-1, [&] {
    auto found = find(std::string(id));
    if (!found) return -1;
    *handle = new auto(std::move(*found));
    return 0;
  });
}

template <typename Record>
int DestroyRecord(void* handle) {
  if (handle == nullptr) return -1;
  delete static_cast<Record*>(handle);
  return 0;
}

}  // namespace host

#endif
