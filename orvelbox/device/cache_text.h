// The text of a cache file: its state, its entries, and what changed between two texts.
#ifndef ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_
#define ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/device.h"

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

}  // namespace orvelbox

#endif
