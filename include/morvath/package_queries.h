// Queries of the records of packages and applications, for the calling user. Nothing is logged.
#ifndef MORVATH_PACKAGE_QUERIES_H_
#define MORVATH_PACKAGE_QUERIES_H_

#include <string>

#include "morvath/export.h"

// The id of the package that owns application `appId`; empty when there is none. Throws std::logic_error when the
// platform returns a null id.
ORVEL_EXPORT std::string getPkgIdFromAppID(const std::string& appId);

// Sets `name` to the file name of the executable of the package's main application and returns 0. Returns -1 and leaves
// `name` unchanged when there is none. Throws std::logic_error when the platform returns a null path.
ORVEL_EXPORT int getExecName(std::string pkgId, std::string& name);

// Sets `value` to the metadata value that the package's main application has for `key`. Without such an entry `value`
// is unchanged, so the caller sets a default first. Returns 0, or -1 for an unknown package or application. Throws
// std::logic_error when the platform returns a null value.
ORVEL_EXPORT int getMetadataValue(std::string pkgId, std::string key, std::string& value);

#endif
