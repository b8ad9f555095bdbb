// The platform's libraries export their own functions and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/symbols.h"

namespace {

using support::Names;

TEST(Exports, each_library_shows_its_own_functions_only) {
  const std::pair<const char*, Names> libraries[] = {
      {"dlog", {"__dlog_print"}},
      {"trace", {"trace_begin", "trace_end"}},
      {"aul", {"aul_restart_loader"}},
      {"package_info", {"package_info_create", "package_info_destroy", "package_info_foreach_privilege_info"}},
      {"pkgmgr_installer", {"pkgmgr_installer_info_get_target_uid"}},
      {"ovplatform", {"ovplatform_getenv"}},
      {"smack", {"smack_getlabel", "smack_lgetlabel", "smack_lsetlabel", "smack_setlabel"}},
      {"pkgmgr_info",
       {"pkgmgrinfo_appinfo_destroy_appinfo", "pkgmgrinfo_appinfo_get_appinfo", "pkgmgrinfo_appinfo_get_exec",
        "pkgmgrinfo_appinfo_get_metadata_value", "pkgmgrinfo_appinfo_get_pkgid", "pkgmgrinfo_appinfo_get_root_path",
        "pkgmgrinfo_appinfo_metadata_filter_add", "pkgmgrinfo_appinfo_metadata_filter_create",
        "pkgmgrinfo_appinfo_metadata_filter_destroy", "pkgmgrinfo_appinfo_metadata_filter_foreach",
        "pkgmgrinfo_pkginfo_destroy_pkginfo", "pkgmgrinfo_pkginfo_get_mainappid", "pkgmgrinfo_pkginfo_get_pkginfo",
        "pkgmgrinfo_pkginfo_get_type", "pkgmgrinfo_pkginfo_get_usr_pkginfo"}}};
  for (const auto& [name, shown] : libraries) {
    EXPECT_EQ(shown, support::Exports(HOST_LIBRARIES_DIRECTORY "/liborvel_" + std::string(name) + ".so")) << name;
  }
}

}  // namespace
