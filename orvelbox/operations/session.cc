// Opening a device for a change.
#include "orvelbox/operations/session.h"

#include "orvelbox/desk/output.h"

namespace orvelbox {

Session::Session(HookSettings settings)
    : settings_(std::move(settings)),
      lock_(settings_.device),
      area_(settings_.device, host::ReadConfig(settings_.device)) {
  OpenStore();
  for (const std::string& line : area_.Mend()) Say(line);
}

host::PackageStore Session::OpenStore() const {
  return host::PackageStore(device().Database(), host::PackageStore::Mode::kReadWrite);
}

host::Package Session::Installed(const std::string& package_id) const { return FindInstalled(OpenStore(), package_id); }

host::Package FindInstalled(const host::PackageStore& store, const std::string& package_id) {
  if (auto package = store.Find(package_id)) return *std::move(package);
  throw host::DeviceError(package_id + ": not installed; see what is with: orvelbox list");
}

}  // namespace orvelbox
