// liborvel_pkgmgr_info: records are copies from the device's package database.
#include "orvel/pkgmgr_info.h"

#include "platform/host/installed_packages.h"

namespace {

using host::InstalledApplication;
using Filter = std::vector<host::MetadataEntry>;

// Returns the text that `find` finds in the record, which owns it. The getters' interface requires a char*.
template <typename Record, typename Find>
int HandOut(void* record, char** out, const Find& find) {
  if (record == nullptr || out == nullptr) return -1;
  std::string* text = find(*static_cast<Record*>(record));
  if (text == nullptr) return -1;
  *out = text->data();
  return 0;
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
  return HandOut<InstalledApplication>(handle, rootPath, [](auto& record) { return &record.package_root; });
}

int pkgmgrinfo_appinfo_get_pkgid(pkgmgrinfo_appinfo_h handle, char** pkgId) {
  return HandOut<InstalledApplication>(handle, pkgId, [](auto& record) { return &record.package_id; });
}

int pkgmgrinfo_appinfo_get_exec(pkgmgrinfo_appinfo_h handle, char** exec) {
  return HandOut<InstalledApplication>(handle, exec, [](auto& record) { return &record.application.exec; });
}

int pkgmgrinfo_appinfo_get_metadata_value(pkgmgrinfo_appinfo_h handle, const char* key, char** value) {
  if (key == nullptr) return -1;
  return HandOut<InstalledApplication>(handle, value, [key](auto& record) -> std::string* {
    for (host::MetadataEntry& entry : record.application.metadata) {
      if (entry.key == key) return &entry.value;
    }
    return nullptr;
  });
}

int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h handle) {
  return host::DestroyRecord<InstalledApplication>(handle);
}

int pkgmgrinfo_pkginfo_get_pkginfo(const char* pkgId, pkgmgrinfo_pkginfo_h* handle) {
  return host::MakeRecord(pkgId, handle, host::FindInstalledPackage);
}

// A desk has one set of packages for all users.
int pkgmgrinfo_pkginfo_get_usr_pkginfo(const char* pkgId, uid_t /*uid*/, pkgmgrinfo_pkginfo_h* handle) {
  return pkgmgrinfo_pkginfo_get_pkginfo(pkgId, handle);
}

int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h handle, char** mainAppId) {
  return HandOut<host::Package>(
      handle, mainAppId, [](auto& record) { return record.main_app_id.empty() ? nullptr : &record.main_app_id; });
}

int pkgmgrinfo_pkginfo_get_type(pkgmgrinfo_pkginfo_h handle, char** type) {
  return HandOut<host::Package>(handle, type, [](auto& record) { return &record.type; });
}

int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h handle) {
  return host::DestroyRecord<host::Package>(handle);
}
