// What a changing command works with: the opened device, held against others and mended.
#ifndef ORVEL_ORVELBOX_OPERATIONS_SESSION_H_
#define ORVEL_ORVELBOX_OPERATIONS_SESSION_H_

#include "orvelbox/desk/lines.h"
#include "orvelbox/device/installed_trees.h"
#include "orvelbox/device/lock.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

class Session {
 public:
  // Takes the device's lock, refuses a package database that it cannot write, and mends what a killed run left. Throws
  // host::DeviceError.
  explicit Session(HookSettings settings);

  const host::Device& device() const { return settings_.device; }
  const HookSettings& settings() const { return settings_; }
  const InstalledTrees& trees() const { return trees_; }
  // A line per package that was mended.
  const Lines& mended() const { return mended_; }

  host::PackageStore OpenStore() const;
  // The record of an installed package. Throws host::DeviceError when it is not installed.
  host::Package Installed(const std::string& package_id) const;

 private:
  HookSettings settings_;
  DeviceLock lock_;
  InstalledTrees trees_;
  Lines mended_;
};

}  // namespace orvelbox

#endif
