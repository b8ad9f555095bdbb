// The platform's libraries show their own functions and nothing else.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

namespace {

using testing::ElementsAre;

std::set<std::string> ExportsOf(const std::string& library) {
  const std::string command =
      "nm -D --defined-only --format=just-symbols " HOST_LIBRARIES_DIRECTORY "/liborvel_" + library + ".so";
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  std::array<char, 512> buffer;
  while (std::fgets(buffer.data(), buffer.size(), pipe) != nullptr) output += buffer.data();
  EXPECT_EQ(0, pclose(pipe)) << command;
  std::set<std::string> symbols;
  std::istringstream stream(output);
  for (std::string symbol; stream >> symbol;) symbols.insert(symbol);
  return symbols;
}

TEST(Exports, each_library_shows_its_own_functions_only) {
  EXPECT_THAT(ExportsOf("dlog"), ElementsAre("__dlog_print"));
  EXPECT_THAT(ExportsOf("trace"), ElementsAre("trace_begin", "trace_end"));
  EXPECT_THAT(ExportsOf("aul"), ElementsAre("aul_restart_loader"));
  EXPECT_THAT(ExportsOf("package_info"),
              ElementsAre("package_info_create", "package_info_destroy", "package_info_foreach_privilege_info"));
  EXPECT_THAT(ExportsOf("pkgmgr_installer"), ElementsAre("pkgmgr_installer_info_get_target_uid"));
  EXPECT_THAT(ExportsOf("ovplatform"), ElementsAre("ovplatform_getenv"));
  EXPECT_THAT(ExportsOf("smack"),
              ElementsAre("smack_getlabel", "smack_lgetlabel", "smack_lsetlabel", "smack_setlabel"));
}

TEST(Exports, the_package_info_library_shows_its_records_and_filters) {
  EXPECT_THAT(
      ExportsOf("pkgmgr_info"),
      ElementsAre("pkgmgrinfo_appinfo_destroy_appinfo", "pkgmgrinfo_appinfo_get_appinfo", "pkgmgrinfo_appinfo_get_exec",
                  "pkgmgrinfo_appinfo_get_metadata_value", "pkgmgrinfo_appinfo_get_pkgid",
                  "pkgmgrinfo_appinfo_get_root_path", "pkgmgrinfo_appinfo_metadata_filter_add",
                  "pkgmgrinfo_appinfo_metadata_filter_create", "pkgmgrinfo_appinfo_metadata_filter_destroy",
                  "pkgmgrinfo_appinfo_metadata_filter_foreach", "pkgmgrinfo_pkginfo_destroy_pkginfo",
                  "pkgmgrinfo_pkginfo_get_mainappid", "pkgmgrinfo_pkginfo_get_pkginfo", "pkgmgrinfo_pkginfo_get_type",
                  "pkgmgrinfo_pkginfo_get_usr_pkginfo"));
}

}  // namespace
