// Cache files compared entry by entry.
#include "orvelbox/device/cache_text.h"

#include <algorithm>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"

namespace orvelbox {
namespace {

// What of `entries` is not in `others`; an entry that is there twice counts twice.
std::vector<std::string> Without(const std::vector<std::string>& entries, std::vector<std::string> others) {
  std::vector<std::string> rest;
  for (const std::string& entry : entries) {
    const auto found = std::find(others.begin(), others.end(), entry);
    if (found == others.end()) {
      rest.push_back(entry);
    } else {
      others.erase(found);
    }
  }
  return rest;
}

}  // namespace

CacheText ReadCache(const host::Device& device, const std::string& name) {
  const std::filesystem::path file = device.OnDesk(kCacheDirectory) / name;
  if (!IsThere(file)) return std::nullopt;
  return host::ReadFile(file);
}

CacheState StateOf(const CacheText& text) {
  if (!text) return CacheState::kMissing;
  return HasPrefix(*text, kStartMarker) && HasSuffix(*text, kEndMarker) ? CacheState::kSound : CacheState::kDamaged;
}

std::string StateInWords(CacheState state) {
  switch (state) {
    case CacheState::kMissing:
      return "missing";
    case CacheState::kDamaged:
      return std::string("damaged: it ") + kWithoutMarkers;
    default:
      return "";
  }
}

std::vector<std::string> EntriesOf(const CacheText& text) {
  std::string_view rest;
  if (text) rest = *text;
  if (HasPrefix(rest, kStartMarker)) rest.remove_prefix(kStartMarker.size());
  if (HasSuffix(rest, kEndMarker)) rest.remove_suffix(kEndMarker.size());
  std::vector<std::string> entries;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(kEntrySeparator), rest.size());
    if (end > 0) entries.emplace_back(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return entries;
}

CacheChange Compare(const CacheText& before, const CacheText& after) {
  const std::vector<std::string> old_entries = EntriesOf(before);
  const std::vector<std::string> new_entries = EntriesOf(after);
  return {StateOf(after), before != after, Without(new_entries, old_entries), Without(old_entries, new_entries)};
}

}  // namespace orvelbox
