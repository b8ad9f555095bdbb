// Handling duplicates: compares a file of a package with the catalogues, reports a duplicate and removes it. What
// counts as a duplicate is in duplicate_policy.h.
#ifndef PLUGIN_DUPLICATES_H_
#define PLUGIN_DUPLICATES_H_

#include <boost/filesystem/path.hpp>
#include <string>

#include "morvath/export.h"
#include "util/platform_utils/directory_walk.h"

// Compares the file `path`, whose file name is `name`, with the plug-in's catalogues. Returns 1 when it is no
// duplicate. Otherwise tries to remove it, unless its origin is in the read-write area, and returns 0.
ORVEL_EXPORT int isUniqueDll(const std::string& path, const std::string& name);
// The same for a file of a directory walk.
int isUniqueDll(const ListedFile& file);

// Is the file `duplicated` a duplicate of `origin`, the catalogued copy? False when the two paths are equal or either
// lies on a DPC path. A duplicate is reported in the log and on standard error.
ORVEL_EXPORT bool isDuplicatedDll(const std::string& origin, const std::string& duplicated);

// Does `path` lie on a DPC path?
ORVEL_EXPORT bool isDPCDll(const std::string& path);

// Deletes the file `duplicated` and creates a text file that says why, under the same path with "_deleted" added. Does
// neither when `origin` lies in the read-write area. removeFile logs a failure to delete. A failure to create the text
// file is not reported.
ORVEL_EXPORT void removeFileAndLeaveInformationFile(const std::string& origin, const std::string& duplicated);

// Does `path`, or the target of the link `path`, exist? If not, or if it cannot be determined, the reason is logged.
ORVEL_EXPORT bool exist(const boost::filesystem::path& path);

#endif
