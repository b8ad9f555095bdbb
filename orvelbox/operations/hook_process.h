// Calls the plug-in's hooks as the package manager does: in a process of their own that sees the device's fixed
// paths, looked up by name in the loaded library. Which hooks an operation calls is decided in operations.
#ifndef ORVEL_ORVELBOX_OPERATIONS_HOOK_PROCESS_H_
#define ORVEL_ORVELBOX_OPERATIONS_HOOK_PROCESS_H_

#include <libxml/tree.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/device.h"

namespace orvelbox {

// The hooks by name, as `events` takes them and as the plug-in exports them after "PKGMGR_PARSER_PLUGIN_".
inline constexpr const char* kHookNames[] = {"INSTALL",          "UPGRADE", "REMOVED", "UNINSTALL",
                                             "RECOVERUNINSTALL", "CLEAN",   "CLEANUP", "UNDO"};

// One hook call and how it ended.
struct HookResult {
  enum class End { kReturned, kThrew, kCrashed };
  std::string hook;  // one of kHookNames
  std::string package_id;
  End end = End::kCrashed;
  int value = 0;        // kReturned: the hook's result
  std::string message;  // kThrew, kCrashed: what happened, in words
};

// The hook calls of one operation, in their order.
struct HookRun {
  std::vector<HookResult> results;
  std::string problem;  // why the plug-in could not be used at all; empty otherwise

  // Every hook was called and returned 0.
  bool Succeeded() const;
};

// Calls one hook and gives its result; only usable in the body of RunHooks. `document` is only read.
using HookCaller = std::function<int(const std::string& hook, xmlDoc* document, const std::string& package_id)>;

struct HookSettings {
  host::Device device;
  std::filesystem::path plugin;  // absolute
  std::filesystem::path trace;   // absolute; empty: as the environment says
  bool quiet = false;            // what the plug-in prints is dropped
  bool tells_in_place = true;    // one line on standard error says so where the machine has no namespaces
};

// Runs `body` in a child process, where it calls hooks through its argument; a hook that throws ends it. Returns what
// the child reported, also when it crashed. Throws host::DeviceError when the plug-in's file is missing or
// the fixed paths cannot be had.
HookRun RunHooks(const HookSettings& settings, const std::function<void(const HookCaller&)>& body);

// The child's report, one line per event: "begin HOOK PKG", "returned N", "threw TEXT", "problem TEXT". Lines that
// are no report, and a last line that is not complete, are left out. `ending` says how the child ended.
HookRun ReadHookReport(std::string_view report, const std::string& ending);

}  // namespace orvelbox

#endif
