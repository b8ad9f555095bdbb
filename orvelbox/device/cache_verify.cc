// The faults of cache files, one function each.
#include "orvelbox/device/cache_verify.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "base/fixed_names.h"
#include "platform/host/json.h"
#include "platform/host/paths.h"

namespace orvelbox {
namespace {

std::string Place(const std::string& name) { return std::string(kCacheDirectory) + name; }

// The package below whose root the entry lies; the one with the longest root, should there be several.
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

CacheFinding NotInstalled(const std::string& name, const std::string& entry) {
  return {name, "not-installed", entry,
          name + ": " + entry + " belongs to no installed package; take the entry out of the file, or install the " +
              "package again"};
}

CacheFinding Gone(const std::string& name, const std::string& entry, const host::Package& owner) {
  return {
      name, "gone", entry,
      name + ": " + entry + " is gone; bring the entries of the package up to date with: orvelbox clean " + owner.id};
}

CacheFinding Twice(const std::string& name, const std::string& entry) {
  return {name, "twice", entry, name + ": " + entry + " is there more than once; leave one of the entries"};
}

}  // namespace

std::vector<CacheFinding> VerifyCache(const std::string& name, const CacheText& text,
                                      const std::vector<host::Package>& packages, const IsOnDevice& is_there) {
  std::vector<CacheFinding> findings = VerifyMarkers(name, text);
  std::set<std::string> seen;
  std::set<std::string> told;
  for (const std::string& entry : EntriesOf(text)) {
    if (!seen.insert(entry).second) {
      if (told.insert(entry).second) findings.push_back(Twice(name, entry));
      continue;
    }
    const host::Package* owner = OwnerOf(entry, packages);
    if (owner == nullptr) {
      findings.push_back(NotInstalled(name, entry));
    } else if (!is_there(entry)) {
      findings.push_back(Gone(name, entry, *owner));
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
