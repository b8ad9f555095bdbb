// Does a package declare a privilege? What follows from the answer is decided by the callers.
#ifndef UTIL_PRIVILEGE_CHECKER_H_
#define UTIL_PRIVILEGE_CHECKER_H_

#include <string>

#include "morvath/export.h"

// Privileges that the plug-in asks for, as full URIs.
inline constexpr const char* kAppDebuggingPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/appdebugging";
inline constexpr const char* kPlatformPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/default/platform";

// User data of privilege_info_cb.
struct PrivilegeSearch {
  bool found = false;
  const char* privilege = nullptr;  // the URI searched for, borrowed
};

// Tells whether package `pkgId` declares `privilege`; false, with an error line, when the package is not known.
ORVEL_EXPORT bool HasPrivilege(const std::string& privilege, const std::string& pkgId);

// Tells whether the package declares the app-debugging privilege.
ORVEL_EXPORT bool isInDebuggingState(const std::string& pkgId);

// Iteration callback: notes in `record`, a PrivilegeSearch, whether `name` is the privilege searched for. Always
// answers true, so that the iteration goes on to the last privilege.
ORVEL_EXPORT bool privilege_info_cb(const char* name, void* record);

#endif
