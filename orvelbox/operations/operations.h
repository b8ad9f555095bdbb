// The operations on packages: what each does, which hooks it calls, and when it takes everything back. An operation
// prints nothing; it returns what happened, also when a hook failed. It throws host::DeviceError for what it refuses;
// then device and database are as before.
#ifndef ORVEL_ORVELBOX_OPERATIONS_OPERATIONS_H_
#define ORVEL_ORVELBOX_OPERATIONS_OPERATIONS_H_

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "base/unique_fd.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/installed_trees.h"
#include "orvelbox/operations/effects.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

// What operations work with: the opened device, held against other changing commands and mended. Readers take no lock.
class Session {
 public:
  // Takes the device's lock, refuses a package database that it cannot write, and mends what a killed run left. Throws
  // host::DeviceError; when the lock is held already, at once and naming the other process.
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
  UniqueFd lock_;  // the lock file, which stays and names the process that took it last
  InstalledTrees trees_;
  Lines mended_;
};

// What an operation did to a package.
struct Change {
  host::Package package;                  // with its place on the device, also when it was not let in
  std::optional<host::Package> previous;  // the version that an upgrade replaces
  Effects effects;
  bool taken_back = false;  // a hook failed, and the device is as before

  bool Done() const { return effects.hooks.Succeeded(); }
};

// INSTALL, then CLEAN (UNDO after -1). The package is taken away again when that fails.
Change Install(const Session& session, const std::filesystem::path& directory);

// UPGRADE, then CLEAN (UNDO after -1). The version before is put back when that fails.
Change Upgrade(const Session& session, const std::filesystem::path& directory);

// UNINSTALL, then CLEAN; then the package goes. It stays when a hook fails.
Change Uninstall(const Session& session, const std::string& package_id);

// The hooks of the events that change nothing but what the hooks do.
using HookNames = std::initializer_list<const char*>;
inline constexpr HookNames kRemoveHooks = {"REMOVED", "CLEAN"};
inline constexpr HookNames kRecoverHooks = {"RECOVERUNINSTALL", "CLEAN"};
inline constexpr HookNames kCleanHooks = {"CLEAN"};
inline constexpr HookNames kCleanupHooks = {"CLEANUP"};
inline constexpr HookNames kUndoHooks = {"UNDO"};

// Calls the hooks for an installed package, in one process.
Change CallHooks(const Session& session, HookNames hooks, const std::string& package_id);

// One hook for one package.
struct RawEvent {
  std::string hook;
  std::string package_id;
};
// Reads "EVENT:PKG". Throws std::invalid_argument, with a line for people, when it is none.
RawEvent ParseRawEvent(const std::string& text);
// Calls the hooks of all events in one process. Nothing but what the hooks do is changed.
Effects CallRawEvents(const Session& session, const std::vector<RawEvent>& events);

}  // namespace orvelbox

#endif
