// Opening a device for a change.
#include "orvelbox/operations/session.h"

namespace orvelbox {

Session::Session(HookSettings settings)
    : settings_(std::move(settings)),
      lock_(settings_.device),
      trees_(settings_.device, host::ReadConfig(settings_.device)) {
  OpenStore();
  mended_ = trees_.Mend();
}

host::PackageStore Session::OpenStore() const {
  return host::PackageStore(device().Database(), host::PackageStore::Mode::kReadWrite);
}

host::Package Session::Installed(const std::string& package_id) const { return FindInstalled(OpenStore(), package_id); }

}  // namespace orvelbox
