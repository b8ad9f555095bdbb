// Doubles of the package information service: the privileges of a package.
#include <string>

#include "orvel/package_info.h"
#include "tests/doubles/platform.h"

namespace {

using doubles::Current;
using doubles::Record;

constexpr int kUnknownPackage = -1;

}  // namespace

int package_info_create(const char* packageId, package_info_h* handle) {
  Current().RecordCall(std::string("package_info_create(") + packageId + ")");
  if (const auto failure = Current().TakeFailure("package_info_create")) return *failure;
  if (Current().TakeNull("package_info_create")) return 0;
  const doubles::Package* package = Current().FindPackage(packageId);
  if (package == nullptr) return kUnknownPackage;
  Record record{Record::Kind::kPackageInfo, *package, {}, {}};
  *handle = Current().Create(record);
  return 0;
}

int package_info_foreach_privilege_info(package_info_h handle, package_info_privilege_info_cb callback,
                                        void* userData) {
  Current().RecordCall("package_info_foreach_privilege_info()");
  Record* record = Current().Use("package_info_foreach_privilege_info", handle, Record::Kind::kPackageInfo);
  if (record == nullptr) return -1;
  for (const std::string& privilege : record->package.privileges) {
    if (!callback(privilege.c_str(), userData)) break;
  }
  return Current().TakeFailure("package_info_foreach_privilege_info").value_or(0);
}

int package_info_destroy(package_info_h handle) {
  Current().RecordCall("package_info_destroy()");
  return Current().Destroy("package_info_destroy", handle, Record::Kind::kPackageInfo);
}
