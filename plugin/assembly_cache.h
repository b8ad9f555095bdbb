// The assembly cache pass: catalogue what the platform provides, then offer every file of a package to the duplicate
// policy. What a duplicate is, and what becomes of it, is in duplicates.
#ifndef PLUGIN_ASSEMBLY_CACHE_H_
#define PLUGIN_ASSEMBLY_CACHE_H_

#include <string>

#include "morvath/export.h"
#include "orvel/pkgmgr_info.h"
#include "plugin/catalogues.h"
#include "util/platform_utils/directory_walk.h"

// Runs the pass over package `pkgId`. Returns 0 when no duplicate was found, or when the pass before was for the same
// id; -1 when duplicates were found (each of them was dealt with) or the package has no root directory. Leaves the
// catalogues filled.
ORVEL_EXPORT int gac(const std::string& pkgId);

// Tells whether the package declares the platform privilege.
ORVEL_EXPORT bool HasPlatformPrivilege(const std::string& pkgId);

// Calls `callback` for every installed application whose metadata holds `key` with the value "true". Failures are
// logged.
ORVEL_EXPORT void getPackageByMetadataTag(pkgmgrinfo_app_list_cb callback, const std::string& key);

// Catalogues the shared assemblies of one CoBA application, given by its record. Always returns 1, so that the
// enumeration goes on; `userData` is not used.
ORVEL_EXPORT int cobaCallback(pkgmgrinfo_appinfo_h handle, void* userData);

// The steps of the pass that fill the catalogues, for whoever judges a package without installing it.
// `platformRoot`: the directory of the platform's assemblies, with a "/" at its end. CataloguePlatform takes up all of
// them but the TV application API.
void CataloguePlatform(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk = WalkFiles);
void CatalogueTvAppApi(const Catalogues& catalogues, const std::string& platformRoot, const Walk& walk = WalkFiles);
// `packageRoot`: the root directory of a package, without a "/" at its end.
void CatalogueSharedResources(const Catalogues& catalogues, const std::string& packageRoot,
                              const Walk& walk = WalkFiles);
void CatalogueLibrary(const Catalogues& catalogues, const std::string& packageRoot, const Walk& walk = WalkFiles);

// Calls `visit` for each file of a package that the pass judges, in its order.
void VisitPackage(const std::string& packageRoot, const FileVisitor& visit, const Walk& walk = WalkFiles);

// The last step of the pass: offers those files to isUniqueDll. Returns -1 when any was a duplicate, else 0.
int RemoveDuplicates(const std::string& packageRoot);

#endif
