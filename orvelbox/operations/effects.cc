// Reads a device before and after an operation.
#include "orvelbox/operations/effects.h"

#include <algorithm>
#include <fstream>
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

LoaderState ReadLoaderState(const host::Device& device) {
  if (!IsThere(device.LoaderRecord())) return {};
  return ParseLoaderRecord(host::ReadFile(device.LoaderRecord()));
}

std::string ReadLogFrom(const host::Device& device, std::uintmax_t offset) {
  std::ifstream log(device.Log(), std::ios::binary);
  log.seekg(static_cast<std::streamoff>(offset));
  return {std::istreambuf_iterator<char>(log), std::istreambuf_iterator<char>()};
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

Snapshot TakeSnapshot(const host::Device& device) {
  return {LogSize(device), ReadCache(device, kTpaFile), ReadCache(device, kCobaFile), ReadLoaderState(device)};
}

Effects EffectsSince(const host::Device& device, const Snapshot& before, HookRun hooks) {
  Effects seen;
  seen.hooks = std::move(hooks);
  seen.log = InterpretLog(ParseLog(ReadLogFrom(device, before.log_size)));
  seen.dlls = FatesOf(device, seen.log.duplicates);
  seen.tpa = Compare(before.tpa, ReadCache(device, kTpaFile));
  seen.coba = Compare(before.coba, ReadCache(device, kCobaFile));
  const LoaderState loader = ReadLoaderState(device);
  seen.loader_restarted = loader.starts > before.loader.starts;
  seen.loader_error = loader.error;
  return seen;
}

LoaderState ParseLoaderRecord(const std::string& record) {
  const host::Json json = host::ParseJson(record);
  LoaderState state;
  if (!json.is_object()) return state;
  const auto starts = json.find("starts");
  if (starts != json.end() && starts->is_number_integer()) state.starts = starts->get<long>();
  const auto error = json.find("error");
  if (error != json.end() && error->is_string()) state.error = error->get<std::string>();
  return state;
}

}  // namespace orvelbox
