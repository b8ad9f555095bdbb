// Cache files compared entry by entry.
#include "orvelbox/device/cache_text.h"

#include <algorithm>

namespace orvelbox {
namespace {

constexpr std::string_view kStart = "[START]";
constexpr std::string_view kEnd = "[END]";

bool HasStart(std::string_view text) { return text.substr(0, kStart.size()) == kStart; }

bool HasEnd(std::string_view text) {
  return text.size() >= kEnd.size() && text.substr(text.size() - kEnd.size()) == kEnd;
}

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

CacheState StateOf(const CacheText& text) {
  if (!text) return CacheState::kMissing;
  return HasStart(*text) && HasEnd(*text) ? CacheState::kSound : CacheState::kDamaged;
}

std::vector<std::string> EntriesOf(const CacheText& text) {
  std::string_view rest;
  if (text) rest = *text;
  if (HasStart(rest)) rest.remove_prefix(kStart.size());
  if (HasEnd(rest)) rest.remove_suffix(kEnd.size());
  std::vector<std::string> entries;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(':'), rest.size());
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
