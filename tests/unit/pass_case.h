// Common code of the tests of the assembly cache pass.
#ifndef TESTS_UNIT_PASS_CASE_H_
#define TESTS_UNIT_PASS_CASE_H_

#include "plugin/assembly_cache.h"
#include "tests/support/unit_case.h"

namespace unit {

inline constexpr const char* kRoot = "/opt/usr/apps/pkg";
inline constexpr const char* kSearch = "void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)";

inline std::string Core(const std::string& name) { return kCoreDirectory + name; }
inline std::string Framework(const std::string& name) { return kFrameworkDirectory + name; }
inline std::string InPackage(const std::string& name) { return std::string(kRoot) + "/" + name; }

inline void PutPackage(Platform& platform, const std::string& id = "pkg", const std::string& root = kRoot) {
  platform.packages.push_back(doubles::MakePackage(id, root));
}

// Runs the pass and discards its standard error.
inline int RunPass(const std::string& id) {
  int result = 0;
  StandardErrorOf([&] { result = gac(id); });
  return result;
}

}  // namespace unit

#endif
