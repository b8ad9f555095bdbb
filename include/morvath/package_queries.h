// Look-ups in the records of packages and applications, for the calling user. Nothing is logged.
#ifndef MORVATH_PACKAGE_QUERIES_H_
#define MORVATH_PACKAGE_QUERIES_H_

#include <string>

#include "morvath/export.h"

// The id of the package that owns application `appId`; empty when it cannot be found. std::logic_error where the
// platform hands out a null id.
ORVEL_EXPORT std::string getPkgIdFromAppID(const std::string& appId);

// Sets `name` to the bare name of the executable of the package's main application. Returns 0; or -1 when there is
// none, and then `name` is untouched. std::logic_error where the platform hands out a null path.
ORVEL_EXPORT int getExecName(std::string pkgId, std::string& name);

// Sets `value` to the metadata value that the package's main application has for `key`; untouched when it has none,
// so the caller sets it to what absence shall mean. Returns 0, or -1 when the package or application is not known.
// std::logic_error where the platform hands out a null value.
ORVEL_EXPORT int getMetadataValue(std::string pkgId, std::string key, std::string& value);

#endif
