// The entries of a cache file, and what changed between two states of it. Pure: texts in, facts out.
#ifndef ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_
#define ORVEL_ORVELBOX_DEVICE_CACHE_TEXT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvelbox {

// The whole text of a cache file; nothing when there is no such file.
using CacheText = std::optional<std::string>;

enum class CacheState { kSound, kMissing, kDamaged };

// kDamaged: the text does not begin with "[START]" and end with "[END]".
CacheState StateOf(const CacheText& text);

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
