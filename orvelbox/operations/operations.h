// The operations on packages: what each does, which hooks it calls, and when it is undone. An operation prints nothing.
// It returns what happened, also when a hook failed. It throws host::DeviceError when it refuses to run; device and
// database are then unchanged.
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
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// An opened device, locked against other changing commands and repaired. Commands that only read take no lock.
class Session {
 public:
  // Locks the device, checks that the package database is writable, and repairs the device after a killed run. Throws
  // host::DeviceError; when another process holds the lock, at once and with that process's id.
  explicit Session(HookSettings settings);

  const host::Device& device() const { return settings_.device; }
  const HookSettings& settings() const { return settings_; }
  const InstalledTrees& trees() const { return trees_; }
  // One line per repaired package.
  const Lines& mended() const { return mended_; }

  host::PackageStore OpenStore() const;
  // The record of an installed package. Throws host::DeviceError when it is not installed.
  host::Package Installed(const std::string& package_id) const;

 private:
  HookSettings settings_;
  UniqueFd lock_;  // the lock file remains and names the last process that locked it
  InstalledTrees trees_;
  Lines mended_;
};

// What an operation did to a package.
struct Change {
  host::Package package;                  // with its path on the device, also when the installation failed
  std::optional<host::Package> previous;  // the version that an upgrade replaces
  Effects effects;
  bool undone = false;  // a hook failed, and the device is unchanged

  bool Done() const { return effects.hooks.Succeeded(); }
};

// INSTALL, then CLEAN (UNDO after -1). On failure the package is removed again.
Change Install(const Session& session, const std::filesystem::path& directory);

// UPGRADE, then CLEAN (UNDO after -1). On failure the previous version is restored.
Change Upgrade(const Session& session, const std::filesystem::path& directory);

// UNINSTALL, then CLEAN, then the package is removed. On failure it stays, and the cache files are restored.
Change Uninstall(const Session& session, const std::string& package_id);

// Hooks of an event that changes nothing beyond what the hooks do.
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
// Parses "EVENT:PKG". Throws std::invalid_argument, with a line for people, for other texts.
RawEvent ParseRawEvent(const std::string& text);
// Calls the hooks of all events in one process. Changes nothing beyond what the hooks do.
Effects CallRawEvents(const Session& session, const std::vector<RawEvent>& events);

}  // namespace orvelbox

#endif
