// Duplicates dealt with: a file of a package is held against the catalogues, reported and removed. What makes a
// duplicate is in duplicate_policy.
#ifndef PLUGIN_DUPLICATES_H_
#define PLUGIN_DUPLICATES_H_

#include <boost/filesystem/path.hpp>
#include <string>

#include "morvath/export.h"
#include "util/platform_utils/directory_walk.h"

// Holds the file `path` with bare name `name` against the plug-in's catalogues and deals with it. Returns 1 when it is
// kept as no duplicate; 0 when it is one: then its removal was attempted, unless its origin is in the read-write area.
ORVEL_EXPORT int isUniqueDll(const std::string& path, const std::string& name);
// The same for a file that a walk has come to.
int isUniqueDll(const ListedFile& file);

// Is the file `duplicated` a duplicate that must go, `origin` being the catalogued copy? Not when both are the same
// path, nor when either lies on a DPC path. A duplicate is reported in the log and on standard error.
ORVEL_EXPORT bool isDuplicatedDll(const std::string& origin, const std::string& duplicated);

// Does `path` lie on a DPC path?
ORVEL_EXPORT bool isDPCDll(const std::string& path);

// Deletes the file `duplicated` and leaves beside it, under its name with "_deleted" added, a text file that says why.
// Does neither when `origin` lies in the read-write area. Failures to delete are logged by removeFile; those to leave
// the text file are silent.
ORVEL_EXPORT void removeFileAndLeaveInformationFile(const std::string& origin, const std::string& duplicated);

// Does `path`, or what it links to, exist? Whatever stands in the way of the answer is logged, absence included.
ORVEL_EXPORT bool exist(const boost::filesystem::path& path);

#endif
