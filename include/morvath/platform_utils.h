// Helpers that the plug-in shares with the launcher's tools: directory walks, guarded paths, durable files, affixes.
// Nothing here knows of packages' duplicates or of the cache files' layout.
#ifndef MORVATH_PLATFORM_UTILS_H_
#define MORVATH_PLATFORM_UTILS_H_

#include <functional>
#include <string>

#include "morvath/export.h"

// Takes an entry's full path and its bare name.
using FileReader = std::function<void(const std::string& path, const std::string& name)>;

// Hands the files of directory `path` to `reader`, then those of its subdirectories, `depth` levels in all (0 counts
// as 1): regular files, and symbolic links that lead to a file or a directory. Links are never descended into, nor is
// any directory whose path contains ".sac_symlink". What cannot be read is passed over silently. An exception of the
// reader, or std::bad_function_call for an empty one, leaves the walk.
ORVEL_EXPORT void scanFilesInDirExcludeSymlink(const std::string& path, FileReader reader, unsigned int depth);

// Hands the immediate subdirectories of directory `path` to `reader`; a directory that cannot be read has none.
ORVEL_EXPORT void scanDirsInDirectory(const std::string& path, FileReader reader);

// True when `path` may be used as a real file: it is anything but a symbolic link, or does not exist yet. False, with
// an error line, for an empty path, a symbolic link, and an entry that cannot be examined.
ORVEL_EXPORT bool isRealPath(const std::string& path);

// Replaces the content of `dirPath` + `fileName` by `content` (up to its first NUL) through the temporary file
// `dirPath` + "temp_" + `fileName`, and returns when it is on disk; a reader sees the old content or the new.
// `dirPath` ends in "/". A failure to open shows only in the log, those to write, flush, sync and rename nowhere: a
// short file may take the place, and a failed rename leaves the temporary file behind. Nothing is written when either
// path is a symbolic link. A pipe, a device or a hard link in the temporary file's place is removed first.
ORVEL_EXPORT void writeStringToFile(std::string dirPath, std::string fileName, std::string content);

// The whole content of the file, byte for byte; empty when it cannot be read as a whole, is no regular file, or is
// larger than 128 MiB. Whoever holds a lease on the file is waited for.
ORVEL_EXPORT std::string readFileToString(std::string path);

// Does `str` begin with `prefix`, end with `suffix`? Byte by byte; an empty affix always matches.
ORVEL_EXPORT bool startWith(const std::string& str, const std::string& prefix);
ORVEL_EXPORT bool endWith(const std::string& str, const std::string& suffix);

#endif
