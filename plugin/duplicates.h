// Duplicates dealt with: a file of a package is judged by the catalogues, reported and removed. What makes a duplicate
// is in duplicate_policy.
#ifndef PLUGIN_DUPLICATES_H_
#define PLUGIN_DUPLICATES_H_

#include <boost/filesystem/path.hpp>
#include <string>

#include "morvath/export.h"
#include "plugin/name_filter.h"
#include "util/platform_utils/directory_walk.h"

// Judges the file `path` with bare name `name` by the catalogues. Returns 1 when it is kept; 0 when it is a duplicate
// and its removal was attempted.
ORVEL_EXPORT int isUniqueDll(const std::string& path, const std::string& name);

// isUniqueDll for the files of one walk, during which the catalogues stay as they are. Asks neither the file system for
// what the listing tells already, nor the catalogues for names that none of them holds. What is reached through a
// symbolic link in the place of the package's root or of a directory below it is not the package's own and kept.
class PackageJudge {
 public:
  // `packageRoot`: the root directory of the package, with which the paths of its files begin.
  explicit PackageJudge(const std::string& packageRoot);
  // Does what isUniqueDll would do for the file, and returns what it would return.
  int Judge(const ListedFile& file) const;

 private:
  bool IsReachedThroughLink(const std::string& path) const;

  std::string packageRoot_;
  NameFilter catalogued_;
};

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
