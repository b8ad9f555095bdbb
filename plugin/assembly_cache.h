// The assembly cache pass: catalogues the assemblies of the platform, then offers every file of a package to the
// duplicate policy. duplicates.h has what happens to a duplicate.
#ifndef PLUGIN_ASSEMBLY_CACHE_H_
#define PLUGIN_ASSEMBLY_CACHE_H_

#include <string>

#include "morvath/export.h"
#include "orvel/pkgmgr_info.h"
#include "plugin/catalogues.h"
#include "util/platform_utils/directory_walk.h"

// Runs the pass over package `pkgId`. Returns 0 when no duplicate was found, or when the previous pass had the same id.
// Returns -1 when duplicates were found (all are handled by then) or when the package has no root directory. The
// catalogues stay filled.
ORVEL_EXPORT int gac(const std::string& pkgId);

// Tells whether the package declares the platform privilege.
ORVEL_EXPORT bool HasPlatformPrivilege(const std::string& pkgId);

// Calls `callback` for every installed application whose metadata has `key` with the value "true". Logs failures.
ORVEL_EXPORT void getPackageByMetadataTag(pkgmgrinfo_app_list_cb callback, const std::string& key);

// Catalogues the shared assemblies of the CoBA application `handle`. Always returns 1 to continue the enumeration.
// `userData` is not used.
ORVEL_EXPORT int cobaCallback(pkgmgrinfo_appinfo_h handle, void* userData);

// The steps of the pass that fill the catalogues, also for callers that judge a package without installing it.
// CataloguePlatform: everything below `platformRoot` (ends in "/") but the TV application API.
void CataloguePlatform(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk = WalkFiles);
void CatalogueTvAppApi(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk = WalkFiles);
// `packageRoot`: the root directory of a package, without a trailing "/".
void CatalogueSharedResources(const Catalogues& catalogues, const std::string& packageRoot,
                              const Walk& walk = WalkFiles);
void CatalogueLibrary(const Catalogues& catalogues, const std::string& packageRoot, const Walk& walk = WalkFiles);

// Calls `visit` for each file of a package that the pass judges, in the order of the pass.
void VisitPackage(const std::string& packageRoot, const FileVisitor& visit, const Walk& walk = WalkFiles);

// The last step of the pass: calls isUniqueDll for those files. Returns -1 when any was a duplicate, otherwise 0.
int RemoveDuplicates(const std::string& packageRoot);

#endif
