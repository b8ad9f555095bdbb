// The cache files of the candidate loader: a package's entries taken out of them and put into them. When that is done
// is the hooks' business; the files themselves are laid down by another component and never created here.
#ifndef PLUGIN_CACHE_FILES_H_
#define PLUGIN_CACHE_FILES_H_

#include <functional>
#include <string>

#include "morvath/export.h"

// Takes the text of an erased span, separators included.
using SpanReader = std::function<void(const std::string& span)>;

// Erases from a cache text every entry that begins with `pkgRoot` right after a ":" or "]", no matter what follows the
// root: a root that begins another's takes that one's entries too. Hands each span to `onErased`, in order, and returns
// what is left. A text that erasing would never get to the end of (there is nothing between such a place and the next
// "[") stays as it is, and nothing is handed on.
std::string EraseEntries(std::string text, const std::string& pkgRoot, const SpanReader& onErased);

// A cache text with `entries` (":"-separated) put before the end marker, whose place, the last five characters, is
// taken unseen.
std::string AppendEntries(std::string text, const std::string& entries);

// Reads the cache file into `cacheText` and erases the entries of `pkgRoot` from the text; the file stays as it is.
// True when an entry was erased. A file that cannot be accessed leaves `cacheText` untouched.
ORVEL_EXPORT bool readCacheAndRemovePkg(std::string cachePath, std::string pkgRoot, std::string& cacheText);

// Takes the package's entries out of both cache files. True when there was one in either; a file without one is not
// rewritten. A null id raises std::logic_error.
ORVEL_EXPORT bool removedPkgFromTPACacheFile(const char* pkgId);

// Puts the package's present entries at the end of both cache files, in place of its old ones. A missing or empty file
// stays so, and "TPA.txt" stays as it is when the package has no assemblies. No failure is reported. A null id
// raises std::logic_error.
ORVEL_EXPORT void addPkgToTPACacheFile(const char* pkgId);

#endif
