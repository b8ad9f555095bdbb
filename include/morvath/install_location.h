// In which environment a launcher tool runs, and where a package is installed. Other questions about a package's record
// are in package_queries.h.
#ifndef MORVATH_INSTALL_LOCATION_H_
#define MORVATH_INSTALL_LOCATION_H_

#include <string>

#include "morvath/export.h"
#include "orvel/pkgmgr_info.h"

// Is this a release image ("/etc/release" exists)?
ORVEL_EXPORT bool isReleaseVersion();

// Does the process run in the image-creation environment ("VARK_CROSSGEN2_ENABLED" is "1")? When the variable is set,
// the answer is also printed on standard output.
ORVEL_EXPORT bool isRunningInVARK();

// Does the package's root directory lie in the read-write area? A positive answer is logged.
ORVEL_EXPORT bool isRWInstalledApp(const std::string& pkgId);

// Must ahead-of-time compilation be skipped for the package? True for all packages in the image-creation environment,
// otherwise for those outside of the read-write area.
ORVEL_EXPORT bool IsNeedToSkipAOT(const std::string& pkgId);

// Must the shared assembly cache be skipped for the package? True for packages outside of the read-write area.
ORVEL_EXPORT bool IsNeedToSkipSAC(const std::string& pkgId);

// Fills `handle` with the package's record for the user of the running installation. The caller destroys it with
// pkgmgrinfo_pkginfo_destroy_pkginfo. Returns 0. On failure logs an error, returns -1 and leaves nothing to destroy.
ORVEL_EXPORT int pkgmgrGetPkgInfo(const std::string& pkgId, pkgmgrinfo_pkginfo_h* handle);

// Does the package's type begin with "rpk"? For an unknown package, logs an error and returns false.
ORVEL_EXPORT bool isRPK(const std::string& pkgId);

#endif
