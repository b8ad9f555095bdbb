// The whole lifecycle of a package on a temporary device: runs it step by step and compares the state of the device
// before and after.
#ifndef ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_
#define ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "orvelbox/desk/output.h"
#include "orvelbox/operations/hook_process.h"
#include "platform/host/device.h"

namespace orvelbox {

// The state of a device: every file, the package database, the cache files. The log, the loader's record and the lock
// are left out, because every operation changes them. Maps a readable name (a path on the device, or "package ID") to a
// text that differs whenever the content differs.
using DeviceState = std::map<std::string, std::string>;

// Throws host::DeviceError.
DeviceState StateOf(const host::Device& device);

// One line per difference: "+ NAME" for added, "- NAME" for removed, "~ NAME" for changed.
Lines Differences(const DeviceState& before, const DeviceState& after);

struct LifecycleStep {
  std::string name;
  std::string problem;    // why it failed; empty otherwise
  std::string complaint;  // a line with details of a failed operation; may be empty
  Lines differences;      // changes that the step should not have made, or should have undone
};

struct Lifecycle {
  std::string package;  // as given by the caller
  std::vector<LifecycleStep> steps;

  // Every step succeeded, and nothing was left behind or lost.
  bool Passed() const;
};

// Runs install, clean, undo, recovery, an upgrade to `upgrade` (may be the same package), clean, recovery and
// uninstall. Ends early when a step fails. Packages are directories or archives. Changes the device of `settings`,
// which should be temporary. Throws host::DeviceError when the device cannot be used.
Lifecycle RunLifecycle(const HookSettings& settings, const std::filesystem::path& package,
                       const std::filesystem::path& upgrade);

// The result as text, and as one JSON object.
Lines DescribeLifecycle(const Lifecycle& lifecycle);
std::string ToJson(const Lifecycle& lifecycle);

}  // namespace orvelbox

#endif
