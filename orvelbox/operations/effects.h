// What hooks changed on a device: its log, cache files, loader and DLLs. report.h describes it.
#ifndef ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_
#define ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_

#include <functional>
#include <string>
#include <vector>

#include "orvelbox/device/cache_text.h"
#include "orvelbox/history/log_facts.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

// What happened to a DLL that was reported as a duplicate.
struct DllFate {
  Duplicate duplicate;
  bool there = false;             // the package's copy still exists
  bool information_file = false;  // "…_deleted" exists beside it
};

struct Effects {
  HookRun hooks;
  LogSummary log;
  std::vector<DllFate> dlls;  // ordered by path
  CacheChange tpa;
  CacheChange coba;
  bool loader_restarted = false;
  std::string loader_error;  // of the last start, if log.restart_failed
};

// Runs hooks (RunHooks) and returns what they changed on the device of `settings`.
Effects EffectsOf(const HookSettings& settings, const std::function<void(const HookCaller&)>& calls);

}  // namespace orvelbox

#endif
