// Package-info queries.
#include "morvath/package_queries.h"

#include "base/package_records.h"

namespace {

// A package and its main application. The application's record is destroyed first.
struct MainApplication {
  PackageRecord package;
  ApplicationRecord application;
};

// Finds the main application of a package; both records are null when there is none.
MainApplication FindMainApplication(const std::string& pkgId) {
  pkgmgrinfo_pkginfo_h packageHandle = nullptr;
  if (pkgmgrinfo_pkginfo_get_pkginfo(pkgId.c_str(), &packageHandle) != 0) return {};
  PackageRecord package(packageHandle);
  char* mainAppId = nullptr;
  if (pkgmgrinfo_pkginfo_get_mainappid(package.get(), &mainAppId) != 0 || mainAppId == nullptr) return {};
  pkgmgrinfo_appinfo_h applicationHandle = nullptr;
  if (pkgmgrinfo_appinfo_get_appinfo(mainAppId, &applicationHandle) != 0) return {};
  return {std::move(package), ApplicationRecord(applicationHandle)};
}

}  // namespace

std::string getPkgIdFromAppID(const std::string& appId) {
  pkgmgrinfo_appinfo_h handle = nullptr;
  if (pkgmgrinfo_appinfo_get_appinfo(appId.c_str(), &handle) != 0) return "";
  const ApplicationRecord application(handle);
  char* pkgId = nullptr;
  if (pkgmgrinfo_appinfo_get_pkgid(application.get(), &pkgId) != 0) return "";
  return pkgId;
}

int getExecName(std::string pkgId, std::string& name) {
  const MainApplication main = FindMainApplication(pkgId);
  if (main.application == nullptr) return -1;
  char* exec = nullptr;
  if (pkgmgrinfo_appinfo_get_exec(main.application.get(), &exec) != 0) return -1;
  const std::string path(exec);
  name = path.substr(path.rfind('/') + 1);
  return 0;
}

int getMetadataValue(std::string pkgId, std::string key, std::string& value) {
  const MainApplication main = FindMainApplication(pkgId);
  if (main.application == nullptr) return -1;
  char* found = nullptr;
  if (pkgmgrinfo_appinfo_get_metadata_value(main.application.get(), key.c_str(), &found) == 0) {
    value = std::string(found);
  }
  return 0;
}
