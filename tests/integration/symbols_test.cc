// What the libraries show and what they leave to others, as their symbol tables have it.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

using Names = std::set<std::string>;

// The lines of the text that are neither empty nor comments.
Names LinesOf(const std::string& text) {
  Names names;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && line.front() != '#') names.insert(line);
  }
  return names;
}

Names Listed(const std::string& file) { return LinesOf(support::ReadFile(file)); }

// The names in the dynamic symbol table of `library` that nm selects by `option`, without versions and without what a
// sanitizer adds.
Names DynamicSymbols(const std::string& library, const std::string& option) {
  Names names;
  for (const std::string& line :
       LinesOf(support::OutputOf(NM_PROGRAM " -D --format=just-symbols " + option + " '" + library + "'"))) {
    if (line.rfind("__odr_asan", 0) != 0) names.insert(line.substr(0, line.find('@')));
  }
  return names;
}

TEST(Symbols, the_platform_and_the_utility_library_are_left_to_others) {
  const Names undefined = DynamicSymbols(MORVATH_LIBRARY, "--undefined-only");
  const Names utilities = Listed(QUARNEL_UTIL_EXPORTS);
  for (const char* name :
       {"__dlog_print", "trace_begin", "trace_end", "aul_restart_loader", "package_info_create",
        "package_info_foreach_privilege_info", "package_info_destroy", "pkgmgrinfo_appinfo_metadata_filter_create",
        "pkgmgrinfo_appinfo_metadata_filter_add", "pkgmgrinfo_appinfo_metadata_filter_foreach",
        "pkgmgrinfo_appinfo_metadata_filter_destroy", "pkgmgrinfo_appinfo_get_root_path", "ovplatform_getenv",
        "_Z11getRootPathRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
        "_Z10concatPathRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEES6_",
        "_Z15getAbsolutePathRKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
        "_Z10removeFileRKN5boost10filesystem4pathE",
        "_Z28addAssembliesFromDirectoriesRKSt6vectorINSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEESaIS5_"
        "EERS5_"}) {
    EXPECT_EQ(1u, undefined.count(name)) << name;
  }
  const Names shown = DynamicSymbols(MORVATH_LIBRARY, "--defined-only");
  for (const std::string& name : utilities) EXPECT_EQ(0u, shown.count(name)) << name;
}

TEST(Symbols, the_utility_library_leaves_the_platform_to_others) {
  const Names undefined = DynamicSymbols(QUARNEL_UTIL_LIBRARY, "--undefined-only");
  for (const char* name : {"__dlog_print", "pkgmgrinfo_pkginfo_get_pkginfo", "pkgmgrinfo_pkginfo_destroy_pkginfo",
                           "pkgmgrinfo_appinfo_get_root_path"}) {
    EXPECT_EQ(1u, undefined.count(name)) << name;
  }
}

}  // namespace
