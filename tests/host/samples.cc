// Devices and packages of the tests.
#include "tests/host/samples.h"

#include <cstdlib>

namespace samples {

EnvironmentDevice::EnvironmentDevice() : device_(host::CreateDevice(directory_.path() / "device")) {
  setenv(host::kDeviceVariable, device_.directory.c_str(), 1);
}

EnvironmentDevice::~EnvironmentDevice() { unsetenv(host::kDeviceVariable); }

void EnvironmentDevice::Install(const std::vector<host::Package>& packages) const {
  host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadWrite);
  for (const auto& package : packages) store.Put(package);
}

host::Package SamplePackage(const std::string& id) {
  const std::string root = "/opt/usr/globalapps/" + id;
  host::Application main{id + ".main", "ui-application", "dotnet-inhouse", root + "/bin/Main.dll", {}};
  main.metadata = {{"mark", "first"}, {"mark", "second"}, {"coba", "true"}, {"only", id}};
  const host::Application service{
      id + ".service", "service-application", "dotnet", root + "/bin/Service.dll", {{"coba", "false"}}};
  return {id, "1.0.0", "opk", root, id + ".main", {main, service}, {"z", "a", "z"}};
}

}  // namespace samples
