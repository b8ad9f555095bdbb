// The text of a cache file: its state, its entries, the changes between two texts, and its faults. No side effects;
// reads the cache file, and asks the caller which files exist.
#ifndef ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_
#define ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "orvelbox/desk/output.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// The whole text of a cache file; nothing when the file is missing.
using CacheText = std::optional<std::string>;

// Reads the cache file `name` (kTpaFile or kCobaFile). Throws host::DeviceError when it cannot be read.
CacheText ReadCache(const host::Device& device, const std::string& name);

enum class CacheState { kSound, kMissing, kDamaged };

// kDamaged: the text does not begin with "[START]" and end with "[END]".
CacheState StateOf(const CacheText& text);
inline constexpr const char* kWithoutMarkers = "does not begin with [START] and end with [END]";

// Empty for kSound.
std::string StateInWords(CacheState state);

// The entries between the markers, or between the existing one and the end; empty entries are omitted.
std::vector<std::string> EntriesOf(const CacheText& text);

struct CacheChange {
  CacheState state = CacheState::kSound;  // of the later text
  bool rewritten = false;                 // the file's content changed, or it was created or removed
  std::vector<std::string> gained;        // in the file's order
  std::vector<std::string> lost;
};

// What changed from `before` to `after`.
CacheChange Compare(const CacheText& before, const CacheText& after);

struct CacheFinding {
  std::string file;   // "TPA.txt" or "CoBA.txt"; empty when it concerns both
  std::string kind;   // "missing", "markers", "gone", "not-installed", "twice" or "prefix"
  std::string entry;  // the entry or the root concerned; may be empty
  std::string text;   // one line for people, with the way out
};

// Does the device's path exist?
using IsOnDevice = std::function<bool(const std::string& path)>;

// The faults of the cache file `name`: missing markers, entries whose files are missing, entries of packages that are
// not installed, repeated entries.
std::vector<CacheFinding> VerifyCache(const std::string& name, const CacheText& text,
                                      const std::vector<host::Package>& packages, const IsOnDevice& is_there);

// Package roots that are prefixes of others ("/apps/a" and "/apps/ab"): removing the entries of one from the cache
// files also removes those of the other.
std::vector<CacheFinding> FindPrefixHazards(const std::vector<host::Package>& packages);

// The findings as text, and as one JSON object.
Lines DescribeFindings(const std::vector<CacheFinding>& findings);
std::string ToJson(const std::vector<CacheFinding>& findings);

}  // namespace orvelbox

#endif
