// Devices and packages of the tests.
#ifndef TESTS_HOST_SAMPLES_H_
#define TESTS_HOST_SAMPLES_H_

#include <string>

#include "platform/host/device.h"
#include "platform/host/package_store.h"
#include "tests/support/files.h"

namespace samples {

// A new device, which the environment names during its lifetime.
class EnvironmentDevice {
 public:
  EnvironmentDevice();
  ~EnvironmentDevice();
  EnvironmentDevice(const EnvironmentDevice&) = delete;
  EnvironmentDevice& operator=(const EnvironmentDevice&) = delete;

  const host::Device& device() const { return device_; }
  // Adds packages to the device's database.
  void Install(const std::vector<host::Package>& packages) const;

 private:
  support::TempDir directory_;
  host::Device device_;
};

// A package "ID" with the applications "ID.main" (metadata, in this order: mark=first, mark=second, coba=true, and one
// more entry) and "ID.service" (coba=false), and the privileges "z", "a", "z".
host::Package SamplePackage(const std::string& id);

}  // namespace samples

#endif
