// Queries of privileges through the package information service.
#include "util/privilege_checker.h"

#include <cstring>
#include <memory>
#include <type_traits>

#include "base/log_texts.h"
#include "orvel/package_info.h"
#include "util/log.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "privilege_checker"};

struct DestroyPackageInfo {
  void operator()(package_info_h handle) const { package_info_destroy(handle); }
};
using PackageInfo = std::unique_ptr<std::remove_pointer_t<package_info_h>, DestroyPackageInfo>;

}  // namespace

bool HasPrivilege(const std::string& privilege, const std::string& pkgId) {
  FunctionEntryExitTracker tracker("bool HasPrivilege(const std::string&, const std::string&)", kLogSource.unit,
                                   __LINE__);
  package_info_h handle = nullptr;
  const int error = package_info_create(pkgId.c_str(), &handle);
  if (error != 0 || handle == nullptr) {
    LOG_ERROR(LOG_TEXT_NO_PACKAGE "%d", error);
    return false;
  }
  const PackageInfo package(handle);
  PrivilegeSearch search;
  search.privilege = privilege.c_str();
  package_info_foreach_privilege_info(package.get(), privilege_info_cb, &search);
  return search.found;
}

bool isInDebuggingState(const std::string& pkgId) { return HasPrivilege(kAppDebuggingPrivilege, pkgId); }

bool privilege_info_cb(const char* name, void* record) {
  auto* search = static_cast<PrivilegeSearch*>(record);
  if (std::strcmp(name, search->privilege) == 0) {
    LOG_INFO("### Have %s privilege ###", name);
    search->found = true;
  }
  return true;
}
