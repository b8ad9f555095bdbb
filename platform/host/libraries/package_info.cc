// liborvel_package_info: a package's record, copied from the device's package database when it is created.
#include "orvel/package_info.h"

#include "platform/host/installed_packages.h"

int package_info_create(const char* packageId, package_info_h* handle) {
  return host::MakeRecord(packageId, handle, host::FindInstalledPackage);
}

int package_info_foreach_privilege_info(package_info_h handle, package_info_privilege_info_cb callback,
                                        void* userData) {
  if (handle == nullptr || callback == nullptr) return -1;
  return host::AnswerOr(-1, [&] {
    for (const auto& privilege : static_cast<const host::Package*>(handle)->privileges) {
      if (!callback(privilege.c_str(), userData)) break;
    }
    return 0;
  });
}

int package_info_destroy(package_info_h handle) { return host::DestroyRecord<host::Package>(handle); }
