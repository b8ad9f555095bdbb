// The candidate loader's start.
#include "platform/host/loader.h"

#include <boost/algorithm/string/split.hpp>
#include <nlohmann/json.hpp>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace host {
namespace {

namespace fs = std::filesystem;

void CheckEntry(const fs::path& file, const std::string& entry) {
  if (entry.empty() || entry[0] != '/') throw DeviceError(file.string() + ": \"" + entry + "\" is no absolute path");
  std::error_code error;
  if (!fs::exists(entry, error)) throw DeviceError(file.string() + ": lists " + entry + ", which is not there");
}

// Reads one cache file into `entries`, then checks them.
void Load(const fs::path& file, std::vector<std::string>* entries) {
  *entries = ParseCache(file, ReadFile(file));
  for (const auto& entry : *entries) CheckEntry(file, entry);
}

// How often a loader was started before; 0 when the record is missing or damaged.
unsigned long EarlierStarts(const fs::path& record) {
  std::error_code error;
  if (!fs::exists(record, error)) return 0;
  const auto json = ParseJson(ReadFile(record));
  if (!json.is_object() || !json.contains("starts") || !json["starts"].is_number_unsigned()) return 0;
  return json["starts"].get<unsigned long>();
}

}  // namespace

std::vector<std::string> ParseCache(const fs::path& file, const std::string& text) {
  if (!HasPrefix(text, kStartMarker)) throw DeviceError(file.string() + ": damaged, it does not begin with [START]");
  if (!HasSuffix(text, kEndMarker)) throw DeviceError(file.string() + ": damaged, it does not end with [END]");
  const std::string_view all = text;
  const auto list = all.substr(kStartMarker.size(), all.size() - kStartMarker.size() - kEndMarker.size());
  std::vector<std::string> entries;
  boost::split(entries, list, [](char c) { return c == kEntrySeparator; });
  if (entries.front().empty()) entries.erase(entries.begin());
  return entries;
}

LoaderStart StartLoader(const fs::path& directory) {
  LoaderStart start;
  try {
    Load(directory / kTpaFile, &start.tpa);
    Load(directory / kCobaFile, &start.coba);
  } catch (const DeviceError& error) {
    start.error = error.what();
  }
  return start;
}

void RecordLoaderStart(const Device& device, const LoaderStart& start) {
  Json record = {{"TPA", start.tpa}, {"CoBA", start.coba}};
  record["starts"] = EarlierStarts(device.LoaderRecord()) + 1;
  record["error"] = start.error.empty() ? Json() : Json(start.error);
  ReplaceFile(device.LoaderRecord(), JsonText(record, 2) + "\n");
}

}  // namespace host
