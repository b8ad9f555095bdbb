// Reads a device before and after hooks.
#include "orvelbox/operations/effects.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace orvelbox {
namespace {

std::uintmax_t LogSize(const host::Device& device) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(device.Log(), error);
  return error ? 0 : size;
}

// The loader's record; the defaults when it is damaged.
struct LoaderState {
  long starts = 0;    // number of starts
  std::string error;  // why the last start failed; empty otherwise
};

LoaderState ReadLoaderState(const host::Device& device) {
  LoaderState state;
  if (!IsThere(device.LoaderRecord())) return state;
  // Nothing is found in what is no object.
  const host::Json json = host::ParseJson(host::ReadFile(device.LoaderRecord()));
  const auto starts = json.find("starts");
  if (starts != json.end() && starts->is_number_integer()) state.starts = starts->get<long>();
  const auto error = json.find("error");
  if (error != json.end() && error->is_string()) state.error = error->get<std::string>();
  return state;
}

// A log that is gone, or closed, says nothing.
LogSummary ReadLogFrom(const host::Device& device, std::uintmax_t offset) {
  if (access(device.Log().c_str(), R_OK) != 0) return {};
  return Summarize(ReadLogFacts(device.Log(), offset));
}

std::vector<DllFate> FatesOf(const host::Device& device, const std::vector<Duplicate>& duplicates) {
  std::vector<DllFate> fates;
  for (const Duplicate& duplicate : duplicates) {
    const std::filesystem::path dll = device.OnDesk(duplicate.duplicated);
    fates.push_back({duplicate, IsThere(dll), IsThere(dll.string() + kInformationFileSuffix.data())});
  }
  std::sort(fates.begin(), fates.end(),
            [](const DllFate& a, const DllFate& b) { return a.duplicate.duplicated < b.duplicate.duplicated; });
  return fates;
}

}  // namespace

Effects EffectsOf(const HookSettings& settings, const std::function<void(const HookCaller&)>& calls) {
  const host::Device& device = settings.device;
  const std::uintmax_t log_size = LogSize(device);
  const CacheText tpa = ReadCache(device, kTpaFile);
  const CacheText coba = ReadCache(device, kCobaFile);
  const long starts = ReadLoaderState(device).starts;
  Effects seen;
  seen.hooks = RunHooks(settings, calls);
  seen.log = ReadLogFrom(device, log_size);
  if (seen.log.unread_from > 0) seen.log.errors.emplace_back(kMoreThanCanBeTold);
  seen.dlls = FatesOf(device, seen.log.duplicates);
  seen.tpa = Compare(tpa, ReadCache(device, kTpaFile));
  seen.coba = Compare(coba, ReadCache(device, kCobaFile));
  const LoaderState loader = ReadLoaderState(device);
  seen.loader_restarted = loader.starts > starts;
  seen.loader_error = loader.error;
  return seen;
}

}  // namespace orvelbox
