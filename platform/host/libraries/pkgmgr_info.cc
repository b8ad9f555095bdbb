// liborvel_pkgmgr_info: records are copies of what the device's package database holds.
#include "orvel/pkgmgr_info.h"

#include <algorithm>

#include "platform/host/installed_packages.h"

namespace {

using Filter = std::vector<host::MetadataEntry>;

// Hands out a text that `record` keeps; getters promise callers a char*.
int HandOut(std::string& text, char** out) {
  *out = text.data();
  return 0;
}

int GetAppText(pkgmgrinfo_appinfo_h handle, char** out, std::string host::InstalledApplication::*text) {
  if (handle == nullptr || out == nullptr) return -1;
  return HandOut(static_cast<host::InstalledApplication*>(handle)->*text, out);
}

}  // namespace

int pkgmgrinfo_appinfo_metadata_filter_create(pkgmgrinfo_appinfo_metadata_filter_h* filter) {
  if (filter == nullptr) return -1;
  return host::AnswerOr(-1, [&] {
    *filter = new Filter;
    return 0;
  });
}

int pkgmgrinfo_appinfo_metadata_filter_add(pkgmgrinfo_appinfo_metadata_filter_h filter, const char* key,
                                           const char* value) {
  if (filter == nullptr || key == nullptr || value == nullptr) return -1;
  return host::AnswerOr(-1, [&] {
    static_cast<Filter*>(filter)->push_back({key, value});
    return 0;
  });
}

int pkgmgrinfo_appinfo_metadata_filter_foreach(pkgmgrinfo_appinfo_metadata_filter_h filter,
                                               pkgmgrinfo_app_list_cb callback, void* userData) {
  if (filter == nullptr || callback == nullptr) return -1;
  return host::AnswerOr(-1, [&] {
    for (auto& application : host::FindInstalledApplications(*static_cast<const Filter*>(filter))) {
      if (callback(&application, userData) < 0) break;
    }
    return 0;
  });
}

int pkgmgrinfo_appinfo_metadata_filter_destroy(pkgmgrinfo_appinfo_metadata_filter_h filter) {
  return host::DestroyRecord<Filter>(filter);
}

int pkgmgrinfo_appinfo_get_appinfo(const char* appId, pkgmgrinfo_appinfo_h* handle) {
  return host::MakeRecord(appId, handle, host::FindInstalledApplication);
}

int pkgmgrinfo_appinfo_get_root_path(pkgmgrinfo_appinfo_h handle, char** rootPath) {
  return GetAppText(handle, rootPath, &host::InstalledApplication::package_root);
}

int pkgmgrinfo_appinfo_get_pkgid(pkgmgrinfo_appinfo_h handle, char** pkgId) {
  return GetAppText(handle, pkgId, &host::InstalledApplication::package_id);
}

int pkgmgrinfo_appinfo_get_exec(pkgmgrinfo_appinfo_h handle, char** exec) {
  if (handle == nullptr || exec == nullptr) return -1;
  return HandOut(static_cast<host::InstalledApplication*>(handle)->application.exec, exec);
}

int pkgmgrinfo_appinfo_get_metadata_value(pkgmgrinfo_appinfo_h handle, const char* key, char** value) {
  if (handle == nullptr || key == nullptr || value == nullptr) return -1;
  auto& metadata = static_cast<host::InstalledApplication*>(handle)->application.metadata;
  const auto entry =
      std::find_if(metadata.begin(), metadata.end(), [&](const host::MetadataEntry& e) { return e.key == key; });
  return entry == metadata.end() ? -1 : HandOut(entry->value, value);
}

int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h handle) {
  return host::DestroyRecord<host::InstalledApplication>(handle);
}

int pkgmgrinfo_pkginfo_get_pkginfo(const char* pkgId, pkgmgrinfo_pkginfo_h* handle) {
  return host::MakeRecord(pkgId, handle, host::FindInstalledPackage);
}

// A desk has one user's packages, which are every user's.
int pkgmgrinfo_pkginfo_get_usr_pkginfo(const char* pkgId, uid_t /*uid*/, pkgmgrinfo_pkginfo_h* handle) {
  return pkgmgrinfo_pkginfo_get_pkginfo(pkgId, handle);
}

int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h handle, char** mainAppId) {
  if (handle == nullptr || mainAppId == nullptr) return -1;
  auto& id = static_cast<host::Package*>(handle)->main_app_id;
  return id.empty() ? -1 : HandOut(id, mainAppId);
}

int pkgmgrinfo_pkginfo_get_type(pkgmgrinfo_pkginfo_h handle, char** type) {
  if (handle == nullptr || type == nullptr) return -1;
  return HandOut(static_cast<host::Package*>(handle)->type, type);
}

int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h handle) {
  return host::DestroyRecord<host::Package>(handle);
}
