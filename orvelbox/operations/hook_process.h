// Calls the plug-in's hooks as the package manager does: in a separate process that sees the device's fixed paths, by
// name in the loaded library. operations.h decides which hooks an operation calls.
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

// The hook names, as `events` takes them and as the plug-in exports them after "PKGMGR_PARSER_PLUGIN_".
inline constexpr const char* kHookNames[] = {"INSTALL",          "UPGRADE", "REMOVED", "UNINSTALL",
                                             "RECOVERUNINSTALL", "CLEAN",   "CLEANUP", "UNDO"};

// One hook call and how it ended.
struct HookResult {
  enum class End { kReturned, kThrew, kCrashed };
  std::string hook;  // one of kHookNames
  std::string package_id;
  End end = End::kCrashed;
  int value = 0;        // kReturned: the hook's result
  std::string message;  // kThrew, kCrashed: what happened
};

// The hook calls of one operation, in order.
struct HookRun {
  std::vector<HookResult> results;
  std::string problem;  // why the plug-in could not be used; empty otherwise

  // Every hook was called and returned 0.
  bool Succeeded() const;
};

// Calls one hook and returns its result. Usable only in the body of RunHooks. `document` is only read.
using HookCaller = std::function<int(const std::string& hook, xmlDoc* document, const std::string& package_id)>;

struct HookSettings {
  host::Device device;
  std::filesystem::path plugin;  // absolute
  std::filesystem::path trace;   // absolute; empty: from the environment
  bool quiet = false;            // discards the plug-in's output
  bool tells_in_place = true;    // prints a note on standard error when the machine has no namespaces
};

// Runs `body` in a child process, where it calls hooks through its argument; a hook that throws ends it. Returns the
// child's report, also after a crash. Throws host::DeviceError when the plug-in's file is missing or no method for the
// fixed paths works.
HookRun RunHooks(const HookSettings& settings, const std::function<void(const HookCaller&)>& body);

// Parses the child's report, one line per event: "begin HOOK PKG", "returned N", "threw TEXT", "problem TEXT". Ignores
// other lines and an incomplete last line. `ending` describes how the child ended.
HookRun ReadHookReport(std::string_view report, const std::string& ending);

}  // namespace orvelbox

#endif
