// The launcher utility library: package roots, paths and lists of assemblies. It decides nothing about packages.
#ifndef QUARNEL_UTIL_QUARNEL_UTIL_H_
#define QUARNEL_UTIL_QUARNEL_UTIL_H_

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "morvath/export.h"

// The root directory of installed package `pkgId`, without a trailing "/"; empty when the package is not known, or
// has no application.
ORVEL_EXPORT std::string getRootPath(const std::string& pkgId);

// Joins two paths with exactly one "/" between them; an empty part leaves the other as it is.
ORVEL_EXPORT std::string concatPath(const std::string& path1, const std::string& path2);

// The absolute form of `path`: a relative one is taken from the working directory. Nothing else is changed, links are
// not resolved, and an empty path stays empty.
ORVEL_EXPORT std::string getAbsolutePath(const std::string& path);

// Appends the non-empty elements of a ":"-separated list to `out`.
ORVEL_EXPORT void splitPath(const std::string& paths, std::vector<std::string>& out);

// Deletes one file; a directory stays. True when no file of that name is left, so a missing one is no error; any
// other failure is logged.
ORVEL_EXPORT bool removeFile(const boost::filesystem::path& path);

// Appends the full paths of the files ending in ".dll" in each of the directories to `out`, separated by ":", the
// directories in their order and the files of each sorted by byte. Names that hold ":" or "[" are left out, because
// such lists could not hold them. A directory that cannot be read has none.
ORVEL_EXPORT void addAssembliesFromDirectories(const std::vector<std::string>& directories, std::string& out);

#endif
