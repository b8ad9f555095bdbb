// Compares cache files entry by entry and finds their faults.
#include "orvelbox/device/cache_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string_view>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "orvelbox/desk/tree.h"
#include "platform/host/files.h"
#include "platform/host/json.h"
#include "platform/host/paths.h"

namespace orvelbox {
namespace {

// The elements of `entries` that are not in `others`; repeated elements are counted.
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

std::string Place(const std::string& name) { return std::string(kCacheDirectory) + name; }

// The package whose root contains the entry; if there are several, the one with the longest root.
const host::Package* OwnerOf(const std::string& entry, const std::vector<host::Package>& packages) {
  const host::Package* owner = nullptr;
  for (const host::Package& package : packages) {
    const bool longer = owner == nullptr || package.root.size() > owner->root.size();
    if (longer && host::IsBelow(entry, package.root)) owner = &package;
  }
  return owner;
}

std::vector<CacheFinding> VerifyMarkers(const std::string& name, const CacheText& text) {
  switch (StateOf(text)) {
    case CacheState::kMissing:
      return {{name, "missing", "",
               Place(name) + " is missing; write " + kEmptyCache + " into a file of that name, then clean each CoBA " +
                   "package with: orvelbox clean PKG"}};
    case CacheState::kDamaged:
      return {{name, "markers", "",
               Place(name) + " " + kWithoutMarkers + "; write " + kEmptyCache +
                   " into it, then clean each CoBA package with: orvelbox clean PKG"}};
    default:
      return {};
  }
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

std::vector<CacheFinding> VerifyCache(const std::string& name, const CacheText& text,
                                      const std::vector<host::Package>& packages, const IsOnDevice& is_there) {
  std::vector<CacheFinding> findings = VerifyMarkers(name, text);
  const auto add = [&](const char* kind, const std::string& entry, const std::string& what) {
    findings.push_back({name, kind, entry, name + ": " + entry + " " + what});
  };
  std::set<std::string> seen;
  std::set<std::string> told;
  for (const std::string& entry : EntriesOf(text)) {
    const host::Package* owner = OwnerOf(entry, packages);
    if (!seen.insert(entry).second) {
      if (told.insert(entry).second) add("twice", entry, "is there more than once; leave one of the entries");
    } else if (owner == nullptr) {
      add("not-installed", entry,
          "belongs to no installed package; take the entry out of the file, or install the package again");
    } else if (!is_there(entry)) {
      add("gone", entry, "is gone; bring the entries of the package up to date with: orvelbox clean " + owner->id);
    }
  }
  return findings;
}

std::vector<CacheFinding> FindPrefixHazards(const std::vector<host::Package>& packages) {
  std::vector<CacheFinding> findings;
  for (const host::Package& package : packages) {
    for (const host::Package& other : packages) {
      if (package.id == other.id || !HasPrefix(other.root, package.root)) continue;
      findings.push_back({"", "prefix", package.root,
                          package.root + " (" + package.id + ") begins " + other.root + " (" + other.id +
                              "); what takes the entries of the first out takes those of the second along, so after " +
                              "an uninstall of " + package.id + ", call: orvelbox clean " + other.id});
    }
  }
  return findings;
}

Lines DescribeFindings(const std::vector<CacheFinding>& findings) {
  if (findings.empty()) return {"both cache files are sound"};
  Lines lines;
  for (const CacheFinding& finding : findings) lines.push_back(finding.text);
  return lines;
}

std::string ToJson(const std::vector<CacheFinding>& findings) {
  host::Json json = {{"sound", findings.empty()}, {"findings", host::Json::array()}};
  for (const CacheFinding& finding : findings) {
    json["findings"].push_back(
        {{"file", finding.file}, {"kind", finding.kind}, {"entry", finding.entry}, {"text", finding.text}});
  }
  return host::AsciiJson(json);
}

}  // namespace orvelbox
