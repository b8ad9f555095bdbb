// What the commands share: choosing the device, calling the plug-in on it, and printing the result of a change.
#ifndef ORVEL_ORVELBOX_COMMANDS_SHARED_H_
#define ORVEL_ORVELBOX_COMMANDS_SHARED_H_

#include <filesystem>
#include <functional>
#include <string>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/operations/hook_process.h"
#include "orvelbox/operations/operations.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// The value of an environment variable, or null.
using Environment = std::function<const char*(const char* name)>;

// The directory of the device: `option`, else ORVELBOX_DEVICE, else "orvelbox/device" in the XDG state directory.
// Throws host::DeviceError when none of them is set.
std::filesystem::path ChooseDevice(const std::string& option, const Environment& environment);

// With this process's environment.
std::filesystem::path ChooseDevice(const GlobalOptions& global);
host::Device OpenChosenDevice(const GlobalOptions& global);

// Opens the package database for reading.
host::PackageStore ReadStore(const host::Device& device);

// The settings from the global options; without --plugin, the plug-in that belongs to this program.
HookSettings HookSettingsFor(const GlobalOptions& global, const host::Device& device);

// The ids of the packages on the chosen device, with their versions.
Candidates InstalledIds(const GlobalOptions& global);
// The argument that is one of them.
Option IdArgument();

// Throws std::invalid_argument when both are named.
void RequireOneOf(const std::string& platform, const GlobalOptions& global);

// Makes `command` open the device and run `change` on it.
void RunOnSession(Command& command, const std::function<int(const Session& session)>& change);

// Adds a package argument to `command` and makes it run `change` with the package's directory.
void RunOnPackage(Command& command,
                  const std::function<int(const Session& session, const std::filesystem::path& directory)>& change);

// Prints the result of `command` below the headline `done` or `failed`, and any error. Returns the exit status.
int PrintChange(const std::string& command, const Change& change, const std::string& done, const std::string& failed);

// A command that calls hooks for an installed package. Its headline is "`done` PACKAGE`after`".
Command MakePackageEvent(const std::string& name, const std::string& description, const std::string& done,
                         const std::string& after, HookNames hooks);

}  // namespace orvelbox

#endif
