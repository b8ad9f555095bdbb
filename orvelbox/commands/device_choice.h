// The device that a command works on, and the plug-in that is called on it.
#ifndef ORVEL_ORVELBOX_COMMANDS_DEVICE_CHOICE_H_
#define ORVEL_ORVELBOX_COMMANDS_DEVICE_CHOICE_H_

#include <filesystem>
#include <functional>
#include <string>

#include "orvelbox/cli/command.h"
#include "orvelbox/operations/hook_process.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// The value of an environment variable, or null.
using Environment = std::function<const char*(const char* name)>;

// The directory of the device: `option`, else ORVELBOX_DEVICE, else "orvelbox/device" in the XDG state directory.
// Throws host::DeviceError when none of them is there.
std::filesystem::path ChooseDevice(const std::string& option, const Environment& environment);

// With this process's environment.
std::filesystem::path ChooseDevice(const GlobalOptions& global);
host::Device OpenChosenDevice(const GlobalOptions& global);

host::PackageStore ReadStore(const host::Device& device);

HookSettings HookSettingsFor(const GlobalOptions& global, const host::Device& device);

// Throws std::invalid_argument when both are named.
void RequireOneOf(const std::string& platform, const GlobalOptions& global);

}  // namespace orvelbox

#endif
