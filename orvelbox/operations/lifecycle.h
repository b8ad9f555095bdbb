// The whole lifecycle of a package on a device that has no other use: step by step, the state of the device compared
// before and after.
#ifndef ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_
#define ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "orvelbox/desk/output.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

// The state of a device: every file, the package database, the cache files; not the log, the loader's record and the
// lock, which every operation touches. Each by a name for people (a path of the device, or "package ID"), with a text
// that is different whenever the thing is.
using DeviceState = std::map<std::string, std::string>;

// Throws host::DeviceError.
DeviceState StateOf(const host::Device& device);

// One line per difference: "+ NAME" for what came, "- NAME" for what went, "~ NAME" for what changed.
Lines Differences(const DeviceState& before, const DeviceState& after);

struct LifecycleStep {
  std::string name;
  std::string problem;    // why it failed; empty otherwise
  std::string complaint;  // a line that tells more about a failed operation; may be empty
  Lines differences;      // what it changed of that which it should have left, or brought back
};

struct Lifecycle {
  std::string package;  // as asked for
  std::vector<LifecycleStep> steps;

  // Every step was done, and nothing was left behind or lost.
  bool Passed() const;
};

// Runs install, clean, undo, recovery, an upgrade to `upgrade` (may be the same package), clean, recovery and
// uninstall; it ends early at a step that fails. Packages are directories or archives. `settings` names the device,
// which is changed, and had better be a throw-away one. Throws host::DeviceError when the device cannot be used.
Lifecycle RunLifecycle(const HookSettings& settings, const std::filesystem::path& package,
                       const std::filesystem::path& upgrade);

Lines DescribeLifecycle(const Lifecycle& lifecycle);
// One JSON object.
std::string ToJson(const Lifecycle& lifecycle);

}  // namespace orvelbox

#endif
