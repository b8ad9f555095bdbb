// What hooks did to a device: its log, cache files, loader and DLLs before and after. Described in report.
#ifndef ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_
#define ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_

#include <functional>
#include <string>
#include <vector>

#include "orvelbox/device/cache_text.h"
#include "orvelbox/history/log_facts.h"
#include "orvelbox/operations/hook_process.h"

namespace orvelbox {

// What became of a DLL that was taken for a duplicate.
struct DllFate {
  Duplicate duplicate;
  bool there = false;             // the package's copy is still there
  bool information_file = false;  // "…_deleted" beside it
};

struct Effects {
  HookRun hooks;
  LogSummary log;
  std::vector<DllFate> dlls;  // ordered by path
  CacheChange tpa;
  CacheChange coba;
  bool loader_restarted = false;
  std::string loader_error;  // of the last start, when log.restart_failed
};

// Runs hooks (RunHooks) and tells what they did to the device of `settings`.
Effects EffectsOf(const HookSettings& settings, const std::function<void(const HookCaller&)>& calls);

}  // namespace orvelbox

#endif
