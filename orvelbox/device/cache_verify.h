// What is wrong with the cache files of a device. Pure but for one question about the device's files.
#ifndef ORVEL_ORVELBOX_DEVICE_CACHE_VERIFY_H_
#define ORVEL_ORVELBOX_DEVICE_CACHE_VERIFY_H_

#include <functional>
#include <string>
#include <vector>

#include "orvelbox/desk/lines.h"
#include "orvelbox/device/cache_text.h"
#include "platform/host/package_store.h"

namespace orvelbox {

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
