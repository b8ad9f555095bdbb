// The whole lifecycle of a package on a device that has no other use: step by step, the device compared before and
// after.
#ifndef ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_
#define ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "orvelbox/desk/lines.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

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
