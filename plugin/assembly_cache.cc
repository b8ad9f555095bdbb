// The assembly cache pass.
#include "plugin/assembly_cache.h"

#include <cstdio>
#include <exception>

#include "base/fixed_names.h"
#include "morvath/metadata_utils.h"
#include "morvath/platform_utils.h"
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "plugin/log_source.h"
#include "quarnel_util/quarnel_util.h"
#include "util/privilege_checker.h"

namespace {

constexpr const char* kPlatformRoot = "/usr/share/dotnet.orvel/";
constexpr const char* kLibrarySuffix = "/lib/";

// How many levels of directories are walked, the first one included.
constexpr unsigned int kDirectoryOnly = 1;
constexpr unsigned int kWithSubdirectories = 2;
constexpr unsigned int kWholePackage = 10;

// A reader that records what it is given in `table`.
FileReader Filler(std::map<std::string, std::string>& table) {
  return [&table](const std::string& path, const std::string& name) { insertItem(table, name, path); };
}

}  // namespace

void CataloguePlatform(const std::string& platformRoot) {
  scanFilesInDirExcludeSymlink(platformRoot + "netcoreapp/", Filler(coreFX), kDirectoryOnly);
  scanFilesInDirExcludeSymlink(platformRoot + "framework/", Filler(orvelFX), kDirectoryOnly);
  scanFilesInDirExcludeSymlink(platformRoot + "d.pc/", Filler(orvelFX), kWithSubdirectories);
}

void CatalogueTvAppApi(const std::string& platformRoot) {
  scanFilesInDirExcludeSymlink(platformRoot + "tvappapi/", Filler(orvelFX), kDirectoryOnly);
}

void CatalogueSharedResources(const std::string& packageRoot) {
  scanFilesInDirExcludeSymlink(packageRoot + kSharedResourceSuffix, Filler(coBA), kDirectoryOnly);
}

void CatalogueLibrary(const std::string& packageRoot) {
  scanFilesInDirExcludeSymlink(packageRoot + kLibrarySuffix, Filler(appLib), kDirectoryOnly);
}

void VisitPackage(const std::string& packageRoot, const FileVisitor& visit) {
  WalkFiles(packageRoot, visit, kWholePackage);
}

int gac(const std::string& pkgId) {
  FunctionEntryExitTracker tracker("int gac(const std::string&)", kLogSource.unit, __LINE__);
  // UPGRADE and REMOVED both end in INSTALL: the same package in a row has been dealt with.
  static std::string prevInstallPkgId;
  if (pkgId == prevInstallPkgId) {
    LOG_INFO("GAC already run for same pkgId (%s)", pkgId.c_str());
    std::fprintf(stderr, "### INSTALL : morvath, GAC already run for same pkgId : %s\n", pkgId.c_str());
    return 0;
  }
  prevInstallPkgId = pkgId;

  // The order counts: a name keeps the path under which it is catalogued first.
  CataloguePlatform(kPlatformRoot);
  if (HasPlatformPrivilege(pkgId)) {
    LOG_DEBUG("This package has platform privilege. So add tvappapi path");
    CatalogueTvAppApi(kPlatformRoot);
  } else {
    LOG_DEBUG("This package does not have platform privilege. So skip tvappapi path");
  }
  getPackageByMetadataTag(cobaCallback, MetadataKey::coBA);
  LOG_DEBUG("coreFX  size = %zu", coreFX.size());
  LOG_DEBUG("orvelFX size = %zu", orvelFX.size());

  const std::string pkgRoot = getRootPath(pkgId);
  if (pkgRoot.empty()) {
    std::fprintf(stderr, "### INSTALL : morvath, pkgRoot is empty : %s\n", pkgId.c_str());
    return -1;
  }
  CatalogueLibrary(pkgRoot);

  int result = 0;
  const PackageJudge packageJudge(pkgRoot);
  VisitPackage(pkgRoot, [&](const ListedFile& file) {
    if (packageJudge.Judge(file) == 0) result = -1;
  });
  return result;
}

bool HasPlatformPrivilege(const std::string& pkgId) {
  FunctionEntryExitTracker tracker("bool HasPlatformPrivilege(const std::string&)", kLogSource.unit, __LINE__);
  return HasPrivilege(kPlatformPrivilege, pkgId);
}

void getPackageByMetadataTag(pkgmgrinfo_app_list_cb callback, const std::string& key) {
  FunctionEntryExitTracker tracker("void getPackageByMetadataTag(pkgmgrinfo_app_list_cb, const std::string&)",
                                   kLogSource.unit, __LINE__);
  pkgmgrinfo_appinfo_metadata_filter_h filter = nullptr;
  if (pkgmgrinfo_appinfo_metadata_filter_create(&filter) != 0) {
    LOG_ERROR("Error: Failed pkgmgrinfo_appinfo_metadata_filter_create");
    return;
  }
  if (pkgmgrinfo_appinfo_metadata_filter_add(filter, key.c_str(), metadataValueTrue.c_str()) != 0) {
    pkgmgrinfo_appinfo_metadata_filter_destroy(filter);
    LOG_ERROR("Error: Failed pkgmgrinfo_appinfo_metadata_filter_add");
    return;
  }
  if (pkgmgrinfo_appinfo_metadata_filter_foreach(filter, callback, nullptr) != 0) {
    std::fputs("Failed pkgmgrinfo_appinfo_metadata_filter_foreach\n", stderr);
    LOG_ERROR("Error: Failed pkgmgrinfo_appinfo_metadata_filter_foreach");
    pkgmgrinfo_appinfo_metadata_filter_destroy(filter);
    return;
  }
  // After a successful enumeration the filter is left as it is: the platform's contract here, not an oversight.
}

int cobaCallback(pkgmgrinfo_appinfo_h handle, void*) try {
  char* root = nullptr;
  if (pkgmgrinfo_appinfo_get_root_path(handle, &root) != 0 || root == nullptr) return 1;
  LOG_DEBUG("Path : %s", root);
  CatalogueSharedResources(root);
  return 1;
} catch (const std::exception&) {
  return 1;  // what was catalogued so far stays; nothing may be thrown through the platform's enumeration
}
