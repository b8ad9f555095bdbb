// The assembly cache pass.
#include "plugin/assembly_cache.h"

#include <cstdio>
#include <exception>
#include <utility>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "morvath/metadata_utils.h"
#include "morvath/platform_utils.h"
#include "plugin/duplicate_policy.h"
#include "plugin/duplicates.h"
#include "plugin/log_source.h"
#include "plugin/name_filter.h"
#include "quarnel_util/quarnel_util.h"
#include "util/privilege_checker.h"

namespace {

constexpr const char* kLibrarySuffix = "/lib/";

// How many levels of directories are walked, the first one included.
constexpr unsigned int kDirectoryOnly = 1;
constexpr unsigned int kWithSubdirectories = 2;
constexpr unsigned int kWholePackage = 10;

// Has the effect of insertItem for each file, but moves the strings and searches from the position of the file before:
// read-only and in-memory file systems list names in order.
void CatalogueFiles(const std::string& directory, Catalogue& catalogue, unsigned int depth, const Walk& walk) {
  const auto record = [&catalogue, place = catalogue.end()](const ListedFile& file) mutable {
    std::string name(file.name);
    std::string path = concatPath(file.directory, name);
    place = catalogue.emplace_hint(place, std::move(name), std::move(path));
  };
  walk(directory, record, depth);
}

}  // namespace

void CataloguePlatform(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk) {
  CatalogueFiles(platformRoot + "netcoreapp/", catalogues.core, kDirectoryOnly, walk);
  CatalogueFiles(platformRoot + "framework/", catalogues.framework, kDirectoryOnly, walk);
  CatalogueFiles(platformRoot + "d.pc/", catalogues.framework, kWithSubdirectories, walk);
}

void CatalogueTvAppApi(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk) {
  CatalogueFiles(platformRoot + "tvappapi/", catalogues.framework, kDirectoryOnly, walk);
}

void CatalogueSharedResources(const Catalogues& catalogues, const std::string& packageRoot, const Walk& walk) {
  CatalogueFiles(packageRoot + kSharedResourceSuffix, catalogues.components, kDirectoryOnly, walk);
}

void CatalogueLibrary(const Catalogues& catalogues, const std::string& packageRoot, const Walk& walk) {
  CatalogueFiles(packageRoot + kLibrarySuffix, catalogues.library, kDirectoryOnly, walk);
}

void VisitPackage(const std::string& packageRoot, const FileVisitor& visit, const Walk& walk) {
  walk(packageRoot, visit, kWholePackage);
}

int RemoveDuplicates(const std::string& packageRoot) {
  NameFilter catalogued;
  for (const Catalogue* catalogue : ByPrecedence(OwnCatalogues())) {
    for (const auto& [name, path] : *catalogue) catalogued.Add(name);
  }
  int result = 0;
  VisitPackage(packageRoot, [&](const ListedFile& file) {
    // For a name in no catalogue the directory listing is enough: isUniqueDll would examine the file and keep it.
    if (!IsAssemblyName(file.name) || (file.regular && !catalogued.MayHold(file.name))) return;
    if (isUniqueDll(file) == 0) result = -1;
  });
  return result;
}

int gac(const std::string& pkgId) {
  FunctionEntryExitTracker tracker("int gac(const std::string&)", kLogSource.unit, __LINE__);
  // UPGRADE and REMOVED also call INSTALL. A second call in a row for the same package has nothing left to do.
  static std::string prevInstallPkgId;
  if (pkgId == prevInstallPkgId) {
    LOG_INFO(LOG_TEXT_RUN_ALREADY "(%s)", pkgId.c_str());
    std::fprintf(stderr, "### INSTALL : morvath, GAC already run for same pkgId : %s\n", pkgId.c_str());
    return 0;
  }
  prevInstallPkgId = pkgId;

  // The order matters: a name keeps the first path that is catalogued for it.
  const Catalogues catalogues = OwnCatalogues();
  const std::string platformRoot = std::string(kPlatformAssemblies) + "/";
  CataloguePlatform(catalogues, platformRoot);
  if (HasPlatformPrivilege(pkgId)) {
    LOG_DEBUG("This package has platform privilege. So add tvappapi path");
    CatalogueTvAppApi(catalogues, platformRoot);
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
  CatalogueLibrary(catalogues, pkgRoot);
  return RemoveDuplicates(pkgRoot);
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
    LOG_ERROR(LOG_TEXT_NO_SEARCH "create");
    return;
  }
  if (pkgmgrinfo_appinfo_metadata_filter_add(filter, key.c_str(), metadataValueTrue.c_str()) != 0) {
    pkgmgrinfo_appinfo_metadata_filter_destroy(filter);
    LOG_ERROR(LOG_TEXT_NO_SEARCH "add");
    return;
  }
  if (pkgmgrinfo_appinfo_metadata_filter_foreach(filter, callback, nullptr) != 0) {
    std::fputs("Failed pkgmgrinfo_appinfo_metadata_filter_foreach\n", stderr);
    LOG_ERROR(LOG_TEXT_NO_SEARCH "foreach");
    pkgmgrinfo_appinfo_metadata_filter_destroy(filter);
    return;
  }
  // After a successful enumeration the filter is not destroyed: the platform's contract here, not an oversight.
}

int cobaCallback(pkgmgrinfo_appinfo_h handle, void*) try {
  char* root = nullptr;
  if (pkgmgrinfo_appinfo_get_root_path(handle, &root) != 0 || root == nullptr) return 1;
  LOG_DEBUG("Path : %s", root);
  CatalogueSharedResources(OwnCatalogues(), root);
  return 1;
} catch (const std::exception&) {
  return 1;  // what is catalogued so far stays; no exception may pass through the platform's enumeration
}
