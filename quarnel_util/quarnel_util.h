// The launcher utility library: package roots, paths and lists of assemblies. It decides nothing about packages.
#ifndef QUARNEL_UTIL_QUARNEL_UTIL_H_
#define QUARNEL_UTIL_QUARNEL_UTIL_H_

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "morvath/export.h"

// The root directory of the installed package `pkgId`, without a trailing "/"; empty when the package is unknown or has
// no application.
ORVEL_EXPORT std::string getRootPath(const std::string& pkgId);

// Joins two paths with exactly one "/" between them. When one is empty, returns the other unchanged.
ORVEL_EXPORT std::string concatPath(const std::string& path1, const std::string& path2);

// The absolute form of `path`: a relative path is resolved against the working directory. Nothing else changes: links
// are not resolved, and an empty path stays empty.
ORVEL_EXPORT std::string getAbsolutePath(const std::string& path);

// Appends the non-empty elements of a ":"-separated list to `out`.
ORVEL_EXPORT void splitPath(const std::string& paths, std::vector<std::string>& out);

// Deletes one file; a directory is never deleted. Returns true when no file of that name remains, so a missing file is
// no error. Logs any other failure.
ORVEL_EXPORT bool removeFile(const boost::filesystem::path& path);

// Appends the full paths of the files ending in ".dll" in each directory to `out`, separated by ":", the directories in
// the given order and the files of each sorted by byte. Leaves out names with ":" or "[", which such a list cannot
// represent. An unreadable directory contributes nothing.
ORVEL_EXPORT void addAssembliesFromDirectories(const std::vector<std::string>& directories, std::string& out);

#endif
