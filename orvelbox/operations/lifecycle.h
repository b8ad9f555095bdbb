// The whole life of a package on a device that has no other use: step by step, the device compared before and after.
#ifndef ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_
#define ORVEL_ORVELBOX_OPERATIONS_LIFECYCLE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "orvelbox/operations/hook_process.h"
#include "orvelbox/operations/report.h"

namespace orvelbox {

// One step of the life.
struct LifeStep {
  std::string name;
  std::string problem;                   // why it failed; empty otherwise
  std::vector<std::string> differences;  // what it changed of that which it should have left, or brought back
};

struct Life {
  std::string package;  // as asked for
  std::vector<LifeStep> steps;

  // Every step was done, and nothing was left behind or lost.
  bool Sound() const;
};

// Lives through install, clean, undo, recovery, an upgrade to `upgrade` (may be the same package), clean, recovery and
// uninstall; it ends early at a step that fails. Packages are directories or archives. `settings` names the device,
// which is changed, and had better be a throw-away one. Throws host::DeviceError when the device cannot be used.
Life LiveThrough(const HookSettings& settings, const std::filesystem::path& package,
                 const std::filesystem::path& upgrade);

Lines DescribeLife(const Life& life);
// One JSON object.
std::string ToJson(const Life& life);

}  // namespace orvelbox

#endif
