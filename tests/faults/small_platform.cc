// The functions of the small platform. Each can be made to fail.
#include "tests/faults/small_platform.h"

#include <sys/types.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/ovplatform.h"
#include "orvel/package_info.h"
#include "orvel/pkgmgr_info.h"
#include "orvel/trace.h"
#include "tests/faults/fault_points.h"

namespace small_platform {

State& Now() {
  static State state;
  return state;
}

namespace {

constexpr int kFailed = -1;

// Must the function fail? Calls the watcher first.
bool Fails(const char* function) {
  if (Now().watcher != nullptr) Now().watcher(function);
  return faults::Meet(faults::kPlatform, function, nullptr) == faults::Verdict::kFail;
}

// A package and its application have the same id.
Package* Find(const char* id) {
  for (Package& package : Now().packages) {
    if (package.id != nullptr && std::strcmp(package.id, id) == 0) return &package;
  }
  return nullptr;
}

int GiveRecord(const char* function, const char* id, void** handle) {
  if (Fails(function)) return kFailed;
  Package* package = Find(id);
  if (package == nullptr) return kFailed;
  *handle = package;
  ++Now().records;
  return 0;
}

// A destruction that fails still destroys the record.
int Destroy(const char* function, int& alive) {
  --alive;
  return Fails(function) ? kFailed : 0;
}

// The getters' interface requires a char*.
int GiveText(const char* function, const char* text, char** out) {
  if (Fails(function)) return kFailed;
  *out = const_cast<char*>(text);
  return 0;
}

}  // namespace

}  // namespace small_platform

using small_platform::Fails;
using small_platform::kFailed;
using small_platform::Now;
using small_platform::Package;

#pragma GCC visibility push(default)

int __dlog_print(int, int, const char*, const char* format, ...) {
  if (Fails("__dlog_print")) return kFailed;
  char text[4096];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return length;
}

void trace_begin(const char*, ...) {
  ++Now().open_spans;
  if (Now().watcher != nullptr) Now().watcher("trace_begin");
}

void trace_end(void) {
  --Now().open_spans;
  if (Now().watcher != nullptr) Now().watcher("trace_end");
}

int aul_restart_loader(const char*) {
  ++Now().restarts;
  return Fails("aul_restart_loader") ? kFailed : 0;
}

const char* ovplatform_getenv(int) { return Fails("ovplatform_getenv") ? nullptr : "/opt/usr/globalapps"; }

int package_info_create(const char* id, package_info_h* handle) {
  return small_platform::GiveRecord("package_info_create", id, handle);
}

int package_info_foreach_privilege_info(package_info_h handle, package_info_privilege_info_cb callback, void* data) {
  if (Fails("package_info_foreach_privilege_info")) return kFailed;
  const char* privilege = static_cast<Package*>(handle)->privilege;
  if (privilege != nullptr) callback(privilege, data);
  return 0;
}

int package_info_destroy(package_info_h) { return small_platform::Destroy("package_info_destroy", Now().records); }

int pkgmgrinfo_appinfo_metadata_filter_create(pkgmgrinfo_appinfo_metadata_filter_h* filter) {
  if (Fails("pkgmgrinfo_appinfo_metadata_filter_create")) return kFailed;
  *filter = &Now();
  ++Now().filters;
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_add(pkgmgrinfo_appinfo_metadata_filter_h, const char*, const char*) {
  return Fails("pkgmgrinfo_appinfo_metadata_filter_add") ? kFailed : 0;
}

int pkgmgrinfo_appinfo_metadata_filter_foreach(pkgmgrinfo_appinfo_metadata_filter_h, pkgmgrinfo_app_list_cb callback,
                                               void* data) {
  if (Fails("pkgmgrinfo_appinfo_metadata_filter_foreach")) return kFailed;
  for (Package& package : Now().packages) {
    if (package.coba && callback(&package, data) < 0) break;
  }
  ++Now().enumerations;
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_destroy(pkgmgrinfo_appinfo_metadata_filter_h) {
  return small_platform::Destroy("pkgmgrinfo_appinfo_metadata_filter_destroy", Now().filters);
}

int pkgmgrinfo_appinfo_get_appinfo(const char* id, pkgmgrinfo_appinfo_h* handle) {
  return small_platform::GiveRecord("pkgmgrinfo_appinfo_get_appinfo", id, handle);
}

int pkgmgrinfo_appinfo_get_root_path(pkgmgrinfo_appinfo_h handle, char** root) {
  return small_platform::GiveText("pkgmgrinfo_appinfo_get_root_path", static_cast<Package*>(handle)->root, root);
}

int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h) {
  return small_platform::Destroy("pkgmgrinfo_appinfo_destroy_appinfo", Now().records);
}

int pkgmgrinfo_pkginfo_get_pkginfo(const char* id, pkgmgrinfo_pkginfo_h* handle) {
  return small_platform::GiveRecord("pkgmgrinfo_pkginfo_get_pkginfo", id, handle);
}

int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h handle, char** id) {
  return small_platform::GiveText("pkgmgrinfo_pkginfo_get_mainappid", static_cast<Package*>(handle)->id, id);
}

int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h) {
  return small_platform::Destroy("pkgmgrinfo_pkginfo_destroy_pkginfo", Now().records);
}

#pragma GCC visibility pop
