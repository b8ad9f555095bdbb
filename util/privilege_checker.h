// Whether a package declares a privilege.
#ifndef UTIL_PRIVILEGE_CHECKER_H_
#define UTIL_PRIVILEGE_CHECKER_H_

#include <string>

#include "morvath/export.h"

// The privileges that the plug-in checks, as full URIs.
inline constexpr const char* kAppDebuggingPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/appdebugging";
inline constexpr const char* kPlatformPrivilege = "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/default/platform";

// The user data of privilege_info_cb.
struct PrivilegeSearch {
  bool found = false;
  const char* privilege = nullptr;  // the wanted URI; not owned
};

// Returns whether package `pkgId` declares `privilege`. For an unknown package, logs an error and returns false.
ORVEL_EXPORT bool HasPrivilege(const std::string& privilege, const std::string& pkgId);

// Returns whether the package declares the app-debugging privilege.
ORVEL_EXPORT bool isInDebuggingState(const std::string& pkgId);

// Iteration callback: records in `record`, a PrivilegeSearch, whether `name` is the wanted privilege. Always returns
// true, so that the iteration continues.
ORVEL_EXPORT bool privilege_info_cb(const char* name, void* record);

#endif
