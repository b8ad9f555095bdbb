// What can be concluded from a log: findings, and the passes that they belong to. How they are drawn is in log_facts.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_FINDINGS_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_FINDINGS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvelbox {

using LineNumber = std::uint64_t;  // the first line is 1

enum class What {
  kRemoved,        // a DLL, as a duplicate of its origin
  kStays,          // a duplicate, because its origin lies in the read-write area
  kRemovalFailed,  // of a duplicate
  kDuplicate,      // a duplicate of which the log does not say what became
  kExempt,         // a DLL that is no duplicate, because it or its origin lies on a d.pc path
  kNoDuplicates,   // a package was looked through
  kRefused,        // an install, because the package is under debugging and has duplicates
  kNotDotnet,      // the plug-in did not take the package for a dotnet-inhouse one
  kSample,         // the same, because an application is a sample
  kNoManifest,     // the package manager gave none
  kRunAlready,     // for the package just before
  kErased,         // an entry of a cache file, which was written without it
  kErasing,        // an entry that went out of a cache file's text; the file may still hold it
  kWritten,        // a cache file
  kRestarted,      // the loader
  kNotRestarted,   // the loader, which was to be
  kError,          // any other
};

struct Finding {
  What what;
  std::string path;    // of the DLL or the cache file; of kRunAlready the package id
  std::string origin;  // the copy that decides, empty when it cannot be known; of kErased and kErasing what went
  std::string text;    // as it was logged, where that is a message for people
  std::string time;    // where the log is a desk's
  std::vector<LineNumber> lines;
  std::size_t sure = 1;  // how many of them stand for it even where lines of several passes are mixed
};

// One call of a hook by the package manager.
struct Pass {
  std::string process;                                      // empty where the log is no desk's
  std::vector<std::pair<std::string, LineNumber>> hooks{};  // that were entered, from the outermost on
  std::string event{};                                      // the outermost hook; empty when it cannot be known
  std::string package{};                                    // its id; empty when it cannot be known
  LineNumber first = 0;                                     // the first and the last of its lines
  LineNumber last = 0;
  bool begun = false;  // its begin is in the log
  bool ended = false;  // its end is in the log
  // Its begin may be before all passes above, and lines of it within them.
  bool reaches_back = false;
  // Lines are missing, or those of several passes are mixed: what hangs on their order is left open.
  bool tangled = false;
  std::vector<Finding> findings{};
};

// The directory of the package that a path lies in: what is below the first directory whose name ends in "apps". Empty
// when there is none.
std::string PackageRootIn(const std::string& path);

}  // namespace orvelbox

#endif
