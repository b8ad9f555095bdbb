// Judges the DLLs of packages by a platform set, with the plug-in's own cataloguing and policy and without installing
// or changing anything.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "orvelbox/check/platform_set.h"
#include "orvelbox/check/result.h"
#include "orvelbox/package/manifest.h"
#include "plugin/duplicate_policy.h"

namespace orvelbox {

class PackageChecker {
 public:
  // Catalogues what every package is checked against. `privileges` count beside those of the manifests. From here on
  // the process's platform library answers with the set's read-write root.
  PackageChecker(PlatformSet set, std::vector<std::string> privileges);

  // Checks the package in `directory`; several threads may do so at a time. Throws host::DeviceError when it is none.
  CheckedPackage Check(const std::filesystem::path& directory) const;

 private:
  using Places = std::map<std::string, std::string>;  // catalogued paths of the device -> the files on the desk

  Catalogue ComponentsBeside(const PlacedPackage& own, bool coba, Places& places) const;
  void JudgeDotnet(const std::filesystem::path& directory, const Manifest& manifest, bool platform,
                   CheckedPackage& package) const;
  void JudgeAll(const std::filesystem::path& directory, const CatalogueList& catalogues, const Places& places,
                CheckedPackage& package) const;
  void AddFacts(const std::filesystem::path& directory, const Places& places, CheckedDll& dll) const;

  PlatformSet set_;
  std::vector<std::string> privileges_;
  Places places_;  // of what follows
  Catalogue core_;
  Catalogue framework_;
  Catalogue framework_with_api_;                 // what packages with the platform privilege see
  std::map<std::string, Catalogue> components_;  // by the id of their packages
};

}  // namespace orvelbox

#endif
