// Judges the DLLs of one package by a platform set, with the plug-in's own cataloguing and policy and without
// installing or changing anything. The catalogues are the plug-in's, process-wide and only ever filled: a process
// judges one package.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_CHECKER_H_

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "orvelbox/check/platform_set.h"
#include "orvelbox/check/result.h"

namespace orvelbox {

class PackageChecker {
 public:
  // Catalogues what every package is checked against. `privileges` count beside those of the manifests. From here on
  // the process's platform library answers with the set's read-write root.
  PackageChecker(PlatformSet set, std::vector<std::string> privileges);

  // Checks the package in `directory`; to be called once in a process. Throws host::DeviceError when it is none.
  CheckedPackage Check(const std::filesystem::path& directory);

 private:
  using Catalogue = std::map<std::string, std::string>;

  void CatalogueRest(const std::filesystem::path& directory, const CheckedPackage& package, bool coba, bool platform);
  template <typename Fill>
  void AddTo(Catalogue& table, const std::string& desk, const std::string& device, bool only_names, const Fill& fill);
  void MoveTo(Catalogue& table, const std::string& desk, const std::string& device, bool only_names);
  void JudgeAll(const std::filesystem::path& directory, CheckedPackage& package);
  void AddFacts(const std::filesystem::path& directory, CheckedDll& dll) const;

  PlatformSet set_;
  std::vector<std::string> privileges_;
  std::map<std::string, std::string> on_desk_;  // catalogued paths of the device -> the files on the desk
};

}  // namespace orvelbox

#endif
