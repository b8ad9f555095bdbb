// The text of a cache file: its state, its entries, what changed between two texts, and what is wrong with it. Pure but
// for reading the file and one question about the device's files.
#ifndef ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_
#define ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orvelbox/desk/output.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// The whole text of a cache file; nothing when there is no such file.
using CacheText = std::optional<std::string>;

// Reads the cache file `name` (kTpaFile or kCobaFile). Throws host::DeviceError when it cannot be read.
CacheText ReadCache(const host::Device& device, const std::string& name);

enum class CacheState { kSound, kMissing, kDamaged };

// kDamaged: the text does not begin with "[START]" and end with "[END]".
CacheState StateOf(const CacheText& text);
inline constexpr const char* kWithoutMarkers = "does not begin with [START] and end with [END]";

// Nothing for a sound one.
std::string StateInWords(CacheState state);

// The entries between the markers (or what is there of them), empty ones left out.
std::vector<std::string> EntriesOf(const CacheText& text);

struct CacheChange {
  CacheState state = CacheState::kSound;  // afterwards
  bool rewritten = false;                 // the file's bytes changed, or the file came or went
  std::vector<std::string> gained;        // in the file's order
  std::vector<std::string> lost;
};

CacheChange Compare(const CacheText& before, const CacheText& after);

struct CacheFinding {
  std::string file;   // "TPA.txt" or "CoBA.txt"; empty for what concerns both
  std::string kind;   // "missing", "markers", "gone", "not-installed", "twice" or "prefix"
  std::string entry;  // the entry, or the root, that it is about; may be empty
  std::string text;   // one line for people, with the way out
};

// Is there something at the device's path?
using IsOnDevice = std::function<bool(const std::string& path)>;

// What is wrong with the cache file `name`: its markers, entries whose files are gone, entries of packages that are not
// installed, entries that are there twice.
std::vector<CacheFinding> VerifyCache(const std::string& name, const CacheText& text,
                                      const std::vector<host::Package>& packages, const IsOnDevice& is_there);

// Roots that are prefixes of others' ("/apps/a" and "/apps/ab"): what takes the entries of the one out of the cache
// files takes those of the other along.
std::vector<CacheFinding> FindPrefixHazards(const std::vector<host::Package>& packages);

// The findings in words, and as one JSON object.
Lines DescribeFindings(const std::vector<CacheFinding>& findings);
std::string ToJson(const std::vector<CacheFinding>& findings);

}  // namespace orvelbox

#endif
