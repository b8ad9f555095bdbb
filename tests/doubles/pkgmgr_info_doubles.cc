// Doubles of the package-info library: metadata filters, application and package records.
#include <algorithm>
#include <string>
#include <vector>

#include "orvel/pkgmgr_info.h"
#include "tests/doubles/platform.h"

namespace {

using doubles::Application;
using doubles::Current;
using doubles::MetadataEntry;
using doubles::Package;
using doubles::Record;

constexpr int kFailed = -1;

bool Meets(const Application& application, const MetadataEntry& demand) {
  return std::any_of(application.metadata.begin(), application.metadata.end(), [&](const MetadataEntry& entry) {
    return entry.key == demand.key && entry.value == demand.value;
  });
}

std::vector<Application> Select(const std::vector<MetadataEntry>& demands) {
  std::vector<Application> selected;
  for (const Package& package : Current().packages) {
    for (const Application& application : package.applications) {
      const bool meets_all = std::all_of(demands.begin(), demands.end(),
                                         [&](const MetadataEntry& demand) { return Meets(application, demand); });
      if (meets_all) selected.push_back(application);
    }
  }
  return selected;
}

// Calls the callback for each application, with a handle that lives until the callback returns.
void Enumerate(const std::vector<Application>& applications, pkgmgrinfo_app_list_cb callback, void* user_data) {
  for (const Application& application : applications) {
    void* handle = Current().Create({Record::Kind::kApplication, {}, application, {}});
    const int answer = callback(handle, user_data);
    Current().Destroy("pkgmgrinfo_appinfo_metadata_filter_foreach", handle, Record::Kind::kApplication);
    if (answer < 0) break;
  }
}

// Returns a text of a record of the kind; `text` selects it, null where the record has none.
template <typename Pick>
int GetText(const std::string& function, void* handle, Record::Kind kind, char** text, Pick pick) {
  Current().RecordCall(function + "()");
  Record* record = Current().Use(function, handle, kind);
  if (record == nullptr) return kFailed;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  *text = Current().TakeNull(function) ? nullptr : pick(*record);
  return 0;
}

const Package* PackageOf(const std::string& application_id) {
  for (const Package& package : Current().packages) {
    for (const Application& application : package.applications) {
      if (application.id == application_id) return &package;
    }
  }
  return nullptr;
}

int GetPackage(const std::string& function, const std::string& arguments, const std::string& id, void** handle) {
  Current().RecordCall(function + "(" + arguments + ")");
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  if (Current().TakeNull(function)) return 0;
  const Package* package = Current().FindPackage(id);
  if (package == nullptr) return kFailed;
  *handle = Current().Create({Record::Kind::kPackage, *package, {}, {}});
  return 0;
}

}  // namespace

int pkgmgrinfo_appinfo_metadata_filter_create(pkgmgrinfo_appinfo_metadata_filter_h* filter) {
  const char* function = "pkgmgrinfo_appinfo_metadata_filter_create";
  Current().RecordCall(std::string(function) + "()");
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  *filter = Current().Create({Record::Kind::kFilter, {}, {}, {}});
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_add(pkgmgrinfo_appinfo_metadata_filter_h filter, const char* key,
                                           const char* value) {
  const char* function = "pkgmgrinfo_appinfo_metadata_filter_add";
  Current().RecordCall(std::string(function) + "(" + key + ", " + value + ")");
  Record* record = Current().Use(function, filter, Record::Kind::kFilter);
  if (record == nullptr) return kFailed;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  record->demands.push_back({key, value});
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_foreach(pkgmgrinfo_appinfo_metadata_filter_h filter,
                                               pkgmgrinfo_app_list_cb callback, void* userData) {
  const char* function = "pkgmgrinfo_appinfo_metadata_filter_foreach";
  Current().RecordCall(std::string(function) + (userData == nullptr ? "(no user data)" : "(user data)"));
  Record* record = Current().Use(function, filter, Record::Kind::kFilter);
  if (record == nullptr) return kFailed;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  Enumerate(Select(record->demands), callback, userData);
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_destroy(pkgmgrinfo_appinfo_metadata_filter_h filter) {
  const char* function = "pkgmgrinfo_appinfo_metadata_filter_destroy";
  Current().RecordCall(std::string(function) + "()");
  return Current().Destroy(function, filter, Record::Kind::kFilter);
}

int pkgmgrinfo_appinfo_get_appinfo(const char* appId, pkgmgrinfo_appinfo_h* handle) {
  const char* function = "pkgmgrinfo_appinfo_get_appinfo";
  Current().RecordCall(std::string(function) + "(" + (appId == nullptr ? "null" : appId) + ")");
  if (appId == nullptr) return kFailed;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  if (Current().TakeNull(function)) return 0;
  const Application* application = Current().FindApplication(appId);
  if (application == nullptr) return kFailed;
  *handle = Current().Create({Record::Kind::kApplication, *PackageOf(appId), *application, {}});
  return 0;
}

int pkgmgrinfo_appinfo_get_root_path(pkgmgrinfo_appinfo_h handle, char** rootPath) {
  return GetText("pkgmgrinfo_appinfo_get_root_path", handle, Record::Kind::kApplication, rootPath,
                 [](Record& record) { return record.application.root ? record.application.root->data() : nullptr; });
}

int pkgmgrinfo_appinfo_get_pkgid(pkgmgrinfo_appinfo_h handle, char** pkgId) {
  return GetText("pkgmgrinfo_appinfo_get_pkgid", handle, Record::Kind::kApplication, pkgId,
                 [](Record& record) { return record.package.id.data(); });
}

int pkgmgrinfo_appinfo_get_exec(pkgmgrinfo_appinfo_h handle, char** exec) {
  return GetText("pkgmgrinfo_appinfo_get_exec", handle, Record::Kind::kApplication, exec,
                 [](Record& record) { return record.application.exec.data(); });
}

int pkgmgrinfo_appinfo_get_metadata_value(pkgmgrinfo_appinfo_h handle, const char* key, char** value) {
  const char* function = "pkgmgrinfo_appinfo_get_metadata_value";
  Current().RecordCall(std::string(function) + "(" + key + ")");
  Record* record = Current().Use(function, handle, Record::Kind::kApplication);
  if (record == nullptr) return kFailed;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  for (MetadataEntry& entry : record->application.metadata) {
    if (entry.key != key) continue;
    *value = Current().TakeNull(function) ? nullptr : entry.value.data();
    return 0;
  }
  return kFailed;
}

int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h handle) {
  const char* function = "pkgmgrinfo_appinfo_destroy_appinfo";
  Current().RecordCall(std::string(function) + "()");
  return Current().Destroy(function, handle, Record::Kind::kApplication);
}

int pkgmgrinfo_pkginfo_get_pkginfo(const char* pkgId, pkgmgrinfo_pkginfo_h* handle) {
  return GetPackage("pkgmgrinfo_pkginfo_get_pkginfo", pkgId, pkgId, handle);
}

int pkgmgrinfo_pkginfo_get_usr_pkginfo(const char* pkgId, uid_t uid, pkgmgrinfo_pkginfo_h* handle) {
  return GetPackage("pkgmgrinfo_pkginfo_get_usr_pkginfo", std::string(pkgId) + ", " + std::to_string(uid), pkgId,
                    handle);
}

int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h handle, char** mainAppId) {
  return GetText("pkgmgrinfo_pkginfo_get_mainappid", handle, Record::Kind::kPackage, mainAppId, [](Record& record) {
    return record.package.applications.empty() ? nullptr : record.package.applications.front().id.data();
  });
}

int pkgmgrinfo_pkginfo_get_type(pkgmgrinfo_pkginfo_h handle, char** type) {
  return GetText("pkgmgrinfo_pkginfo_get_type", handle, Record::Kind::kPackage, type,
                 [](Record& record) { return record.package.type.data(); });
}

int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h handle) {
  const char* function = "pkgmgrinfo_pkginfo_destroy_pkginfo";
  Current().RecordCall(std::string(function) + "()");
  return Current().Destroy(function, handle, Record::Kind::kPackage);
}
