// Judges the DLLs of packages by a platform set, with the plug-in's own cataloguing, walk and policy and without
// installing, unpacking or changing anything.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "orvelbox/check/platform_set.h"
#include "orvelbox/check/result.h"
#include "plugin/catalogues.h"
#include "plugin/duplicate_policy.h"

namespace orvelbox {

class PackageChecker {
 public:
  // Catalogues what every package is checked against. `privileges` count beside those of the manifests. From here on
  // the process's platform library answers with the set's read-write root.
  PackageChecker(PlatformSet set, std::vector<std::string> privileges);

  // Checks the package in the directory or archive `package`; several threads may do so at a time. Throws
  // host::DeviceError when it is none.
  CheckedPackage Check(const std::filesystem::path& package) const;

 private:
  Catalogue ComponentsWith(const PlacedPackage& own, bool coba) const;
  void JudgeDotnet(const PlacedPackage& own, bool coba, bool platform, CheckedPackage& package) const;
  void JudgeAll(const PlacedPackage& own, const CatalogueList& catalogues, CheckedPackage& package) const;
  DllCopy Provided(const std::string& origin, const PlacedPackage& own) const;

  PlatformSet set_;
  std::vector<std::string> privileges_;
  Catalogue core_;
  Catalogue framework_;
  Catalogue framework_with_api_;                 // what packages with the platform privilege see
  std::map<std::string, Catalogue> components_;  // by the id of their packages
  Catalogue all_components_;
  mutable std::mutex mutex_;  // guards what follows
  mutable std::unordered_map<std::string, DllCopy> provided_;
};

}  // namespace orvelbox

#endif
