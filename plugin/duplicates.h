// The duplicate policy: is a file of a package a duplicate of a catalogued one, and what becomes of it if so.
#ifndef PLUGIN_DUPLICATES_H_
#define PLUGIN_DUPLICATES_H_

#include <boost/filesystem/path.hpp>
#include <string>

#include "morvath/export.h"

// Judges the file `path` with bare name `name` by the catalogues. Returns 1 when it is kept; 0 when it is a duplicate
// and its removal was attempted.
ORVEL_EXPORT int isUniqueDll(const std::string& path, const std::string& name);

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
