// Editing the cache files of the candidate loader: removes and adds the entries of a package. The hooks decide when.
// Another component creates the files; they are never created here.
#ifndef PLUGIN_CACHE_FILES_H_
#define PLUGIN_CACHE_FILES_H_

#include <functional>
#include <string>

#include "morvath/export.h"

// Receives the text of an erased span, including its separators.
using SpanReader = std::function<void(const std::string& span)>;

// Erases from a cache text every entry that begins with `pkgRoot` right after a ":" or "]". What follows the root does
// not matter, so "/a/b" also erases the entries of "/a/bc". Calls `onErased` for each span, in order, and returns the
// remaining text. When erasing would not terminate (nothing stands between such an entry and the next "["), returns the
// text unchanged and calls nothing.
std::string EraseEntries(std::string text, const std::string& pkgRoot, const SpanReader& onErased);

// Returns a cache text with `entries` (":"-separated) inserted before the end marker. The last five characters are
// taken as the end marker unchecked.
std::string AppendEntries(std::string text, const std::string& entries);

// Reads the cache file into `cacheText` and erases the entries of `pkgRoot` from that text. The file is not changed.
// Returns true when an entry was erased. When the file cannot be accessed, `cacheText` is unchanged.
ORVEL_EXPORT bool readCacheAndRemovePkg(std::string cachePath, std::string pkgRoot, std::string& cacheText);

// Removes the package's entries from both cache files. Returns true when either had one. A file without one is not
// rewritten. Throws std::logic_error for a null id.
ORVEL_EXPORT bool removedPkgFromTPACacheFile(const char* pkgId);

// Replaces the package's entries in both cache files by its present ones, at the end. A missing or empty file stays as
// it is, and so does "TPA.txt" when the package has no assemblies. Reports no failure. Throws std::logic_error for a
// null id.
ORVEL_EXPORT void addPkgToTPACacheFile(const char* pkgId);

#endif
