// File helpers that the plug-in shares with the launcher's tools: directory walks, path checks, durable files, affixes.
// Nothing here knows about duplicates or about the format of the cache files.
#ifndef MORVATH_PLATFORM_UTILS_H_
#define MORVATH_PLATFORM_UTILS_H_

#include <functional>
#include <string>

#include "morvath/export.h"

// Receives the full path of an entry and its file name.
using FileReader = std::function<void(const std::string& path, const std::string& name)>;

// Calls `reader` for the files of directory `path`, then for those of its subdirectories, down to `depth` levels in all
// (0 counts as 1). Files are regular files, and symbolic links to a file or a directory. The walk enters no link and no
// directory whose path contains ".sac_symlink", and skips silently what it cannot read. An exception of `reader` ends
// the walk and is passed on; an empty `reader` throws std::bad_function_call.
ORVEL_EXPORT void scanFilesInDirExcludeSymlink(const std::string& path, FileReader reader, unsigned int depth);

// Calls `reader` for each immediate subdirectory of directory `path`. An unreadable directory has none.
ORVEL_EXPORT void scanDirsInDirectory(const std::string& path, FileReader reader);

// Is `path` no symbolic link, or does it not exist yet? For an empty path, a symbolic link, and an entry that cannot be
// examined, logs an error and returns false.
ORVEL_EXPORT bool isRealPath(const std::string& path);

// Replaces the content of `dirPath` + `fileName` with `content` (up to its first NUL). `dirPath` ends in "/". Writes
// the temporary file `dirPath` + "temp_" + `fileName` and renames it, so that a reader sees the old content or the new,
// and returns when the content is on disk. A failed open is logged. A failed write, flush, sync or rename is not
// reported: the new file may be short, or the temporary file may remain. Writes nothing when either path is a symbolic
// link. Removes a pipe, a device or a hard link that has the temporary file's name.
ORVEL_EXPORT void writeStringToFile(std::string dirPath, std::string fileName, std::string content);

// The whole content of the file, byte for byte. Empty when the file cannot be read as a whole, is not a regular file,
// or is larger than 128 MiB. Waits for the holder of a lease on the file.
ORVEL_EXPORT std::string readFileToString(std::string path);

// Does `str` begin with `prefix` or end with `suffix`, byte for byte? An empty affix always matches.
ORVEL_EXPORT bool startWith(const std::string& str, const std::string& prefix);
ORVEL_EXPORT bool endWith(const std::string& str, const std::string& suffix);

#endif
