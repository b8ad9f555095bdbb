// The platform for the measured programs.
#include "bench/platform.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "bench/device_tree.h"
#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/ovplatform.h"
#include "orvel/package_info.h"
#include "orvel/pkgmgr_info.h"
#include "orvel/trace.h"

namespace {

bench::LogCount logged;
char record;  // every handle points to this, unless it is an application's root

char* Writable(const char* text) { return const_cast<char*>(text); }

void* Handle(const char* root) { return const_cast<char*>(root); }

}  // namespace

const bench::LogCount& bench::Logged() { return logged; }

#pragma GCC visibility push(default)
extern "C" {

int __dlog_print(int, int, const char*, const char* format, ...) {
  static char line[8192];
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(line, sizeof line, format, arguments);
  va_end(arguments);
  ++logged.lines;
  logged.bytes += length;
  return length;
}

// The header does not let the compiler check formats for callers; here it may.
void trace_begin(const char* name, ...) __attribute__((format(printf, 1, 2)));
void trace_begin(const char* name, ...) {
  static char span[1024];
  va_list arguments;
  va_start(arguments, name);
  std::vsnprintf(span, sizeof span, name, arguments);
  va_end(arguments);
  ++logged.spans;
}

void trace_end() { ++logged.spans; }

// The disk is not measured.
void sync() noexcept {}

int aul_restart_loader(const char*) { return 0; }

const char* ovplatform_getenv(int) { return "/opt/usr/globalapps"; }

int package_info_create(const char*, package_info_h* handle) {
  *handle = &record;
  return 0;
}

int package_info_foreach_privilege_info(package_info_h, package_info_privilege_info_cb, void*) { return 0; }

int package_info_destroy(package_info_h) { return 0; }

int pkgmgrinfo_appinfo_metadata_filter_create(pkgmgrinfo_appinfo_metadata_filter_h* filter) {
  *filter = &record;
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_add(pkgmgrinfo_appinfo_metadata_filter_h, const char*, const char*) { return 0; }

int pkgmgrinfo_appinfo_metadata_filter_foreach(pkgmgrinfo_appinfo_metadata_filter_h, pkgmgrinfo_app_list_cb callback,
                                               void* user_data) {
  for (int package = 0; package < bench::kCobaPackages; ++package) {
    callback(Handle(bench::CobaRoot(package).c_str()), user_data);
  }
  return 0;
}

int pkgmgrinfo_appinfo_metadata_filter_destroy(pkgmgrinfo_appinfo_metadata_filter_h) { return 0; }

int pkgmgrinfo_pkginfo_get_pkginfo(const char*, pkgmgrinfo_pkginfo_h* handle) {
  *handle = &record;
  return 0;
}

int pkgmgrinfo_pkginfo_get_mainappid(pkgmgrinfo_pkginfo_h, char** application) {
  *application = Writable("org.example.bench");
  return 0;
}

int pkgmgrinfo_pkginfo_destroy_pkginfo(pkgmgrinfo_pkginfo_h) { return 0; }

int pkgmgrinfo_appinfo_get_appinfo(const char*, pkgmgrinfo_appinfo_h* handle) {
  *handle = Handle(bench::kPackageRoot);
  return 0;
}

int pkgmgrinfo_appinfo_get_root_path(pkgmgrinfo_appinfo_h handle, char** root) {
  *root = static_cast<char*>(handle);
  return 0;
}

int pkgmgrinfo_appinfo_destroy_appinfo(pkgmgrinfo_appinfo_h) { return 0; }

}  // extern "C"
#pragma GCC visibility pop
