// The listings, as text for people and as JSON for programs. The text must still be made printable (output.h). JSON is
// one line.
#ifndef ORVEL_ORVELBOX_DEVICE_LISTINGS_H_
#define ORVEL_ORVELBOX_DEVICE_LISTINGS_H_

#include <string>
#include <vector>

#include "orvelbox/desk/output.h"
#include "orvelbox/device/cache_text.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// A line per package, or an array with an object per package.
Lines DescribePackages(const std::vector<host::Package>& packages);
std::string PackagesJson(const std::vector<host::Package>& packages);

// All details of one package.
Lines DescribePackage(const host::Package& package);
std::string PackageJson(const host::Package& package);

// Both cache files with their entries; the object has the "state" ("sound", "missing" or "damaged") and the "entries"
// of each.
Lines DescribeCaches(const CacheText& tpa, const CacheText& coba);
std::string CachesJson(const CacheText& tpa, const CacheText& coba);

}  // namespace orvelbox

#endif
