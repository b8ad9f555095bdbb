// Where and how a launcher tool runs, and where a package is installed. What is in a package's records otherwise is in
// package_queries.
#ifndef MORVATH_INSTALL_LOCATION_H_
#define MORVATH_INSTALL_LOCATION_H_

#include <string>

#include "morvath/export.h"
#include "orvel/pkgmgr_info.h"

// Is this a release image ("/etc/release" exists)?
ORVEL_EXPORT bool isReleaseVersion();

// Does the environment say that this is the image-creation environment ("VARK_CROSSGEN2_ENABLED" is "1")? Where the
// variable is set at all, a line on standard output tells the answer.
ORVEL_EXPORT bool isRunningInVARK();

// Does the package's root directory lie in the read-write area? A positive answer is logged.
ORVEL_EXPORT bool isRWInstalledApp(const std::string& pkgId);

// Is ahead-of-time compilation to be skipped for the package? For all in the image-creation environment, else for
// those outside of the read-write area.
ORVEL_EXPORT bool IsNeedToSkipAOT(const std::string& pkgId);

// Is the shared assembly cache to be skipped for the package? For those outside of the read-write area.
ORVEL_EXPORT bool IsNeedToSkipSAC(const std::string& pkgId);

// Fills `handle` with the package's record for the user whose installation is running; the caller destroys it with
// pkgmgrinfo_pkginfo_destroy_pkginfo. Returns 0, or -1 after an error line, and then there is nothing to destroy.
ORVEL_EXPORT int pkgmgrGetPkgInfo(const std::string& pkgId, pkgmgrinfo_pkginfo_h* handle);

// Does the package's type begin with "rpk"? False for an unknown package, after an error line.
ORVEL_EXPORT bool isRPK(const std::string& pkgId);

#endif
