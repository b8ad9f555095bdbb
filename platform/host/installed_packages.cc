// The packages of the environment's device.
#include "platform/host/installed_packages.h"

#include <algorithm>
#include <utility>

#include "platform/host/device.h"

namespace host {
namespace {

std::optional<InstalledApplication> Pick(const std::optional<Package>& package, const std::string& app_id) {
  if (!package) return std::nullopt;
  const auto& all = package->applications;
  const auto found = std::find_if(all.begin(), all.end(), [&](const Application& a) { return a.id == app_id; });
  if (found == all.end()) return std::nullopt;
  return InstalledApplication{*found, package->id, package->root};
}

}  // namespace

std::optional<Package> FindInstalledPackage(const std::string& package_id) {
  const auto device = DeviceOfEnvironment();
  if (!device) return std::nullopt;
  return PackageStore(device->Database(), PackageStore::Mode::kReadOnly).Find(package_id);
}

std::optional<InstalledApplication> FindInstalledApplication(const std::string& app_id) {
  const auto device = DeviceOfEnvironment();
  if (!device) return std::nullopt;
  return Pick(PackageStore(device->Database(), PackageStore::Mode::kReadOnly).FindByApplication(app_id), app_id);
}

std::vector<InstalledApplication> FindInstalledApplications(const std::vector<MetadataEntry>& entries) {
  const auto device = DeviceOfEnvironment();
  if (!device) throw DeviceError(std::string(kDeviceVariable) + " names no device");
  const PackageStore store(device->Database(), PackageStore::Mode::kReadOnly);
  std::vector<InstalledApplication> applications;
  for (const auto& [package_id, app_id] : store.ApplicationsWithMetadata(entries)) {
    if (auto application = Pick(store.Find(package_id), app_id)) applications.push_back(std::move(*application));
  }
  return applications;
}

}  // namespace host
