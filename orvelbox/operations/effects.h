// What an operation did to a device: its log, cache files, loader and DLLs before and after. Only reads;
// described in report.
#ifndef ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_
#define ORVEL_ORVELBOX_OPERATIONS_EFFECTS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "orvelbox/device/cache_text.h"
#include "orvelbox/history/log_facts.h"
#include "orvelbox/operations/hook_process.h"
#include "platform/host/device.h"

namespace orvelbox {

// What the loader's record says.
struct LoaderState {
  long starts = 0;    // how often it was started
  std::string error;  // why the last start failed; empty otherwise
};

// A device before an operation.
struct Snapshot {
  std::uintmax_t log_size = 0;
  CacheText tpa;
  CacheText coba;
  LoaderState loader;
};

// What became of a DLL that was taken for a duplicate.
struct DllFate {
  Duplicate duplicate;
  bool there = false;             // the package's copy is still there
  bool information_file = false;  // "…_deleted" beside it
};

struct Effects {
  HookRun hooks;
  LogFacts log;
  std::vector<DllFate> dlls;  // ordered by path
  CacheChange tpa;
  CacheChange coba;
  bool loader_restarted = false;
  std::string loader_error;  // of the last start, when log.restart_failed
};

Snapshot TakeSnapshot(const host::Device& device);
Effects EffectsSince(const host::Device& device, const Snapshot& before, HookRun hooks);

// Reads the text of the loader's record; a damaged one says nothing.
LoaderState ParseLoaderRecord(const std::string& record);

}  // namespace orvelbox

#endif
