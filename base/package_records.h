// Owners of the package-info library's records.
#ifndef BASE_PACKAGE_RECORDS_H_
#define BASE_PACKAGE_RECORDS_H_

#include <memory>
#include <type_traits>

#include "orvel/pkgmgr_info.h"

struct DestroyPackageRecord {
  void operator()(pkgmgrinfo_pkginfo_h handle) const { pkgmgrinfo_pkginfo_destroy_pkginfo(handle); }
};
using PackageRecord = std::unique_ptr<std::remove_pointer_t<pkgmgrinfo_pkginfo_h>, DestroyPackageRecord>;

struct DestroyApplicationRecord {
  void operator()(pkgmgrinfo_appinfo_h handle) const { pkgmgrinfo_appinfo_destroy_appinfo(handle); }
};
using ApplicationRecord = std::unique_ptr<std::remove_pointer_t<pkgmgrinfo_appinfo_h>, DestroyApplicationRecord>;

#endif
