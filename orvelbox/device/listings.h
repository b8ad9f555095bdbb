// What the listings list, as JSON for programs. The texts are ASCII; what is no UTF-8 becomes replacement characters.
#ifndef ORVEL_ORVELBOX_DEVICE_LISTINGS_H_
#define ORVEL_ORVELBOX_DEVICE_LISTINGS_H_

#include <string>
#include <vector>

#include "orvelbox/device/cache_text.h"
#include "platform/host/log_file.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// An array with an object per package, and one package whole, each on one line.
std::string PackagesJson(const std::vector<host::Package>& packages);
std::string PackageJson(const host::Package& package);

// One object with both cache files: for each its "state" ("sound", "missing" or "damaged") and its "entries".
std::string CachesJson(const CacheText& tpa, const CacheText& coba);

// One record on one line, its text as it was logged, colour sequences included.
std::string RecordJson(const host::LogRecord& record);

}  // namespace orvelbox

#endif
