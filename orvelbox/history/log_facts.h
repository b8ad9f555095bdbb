// What a log says that the plug-in did: the one reader of its messages (pure: lines in, facts out), for the commands
// that tell of an operation, of a package and of a whole log. Each fact names the lines that it rests on; what cannot
// be known is left open. Words are found elsewhere.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_FACTS_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_FACTS_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
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
  kNotDotnet,      // a package without an application of a "dotnet-" type
  kSample,         // an application that is a sample
  kNoManifest,     // the package manager gave none
  kRunAlready,     // for the package just before
  kErased,         // an entry of a cache file
  kWritten,        // a cache file
  kRestarted,      // the loader
  kNotRestarted,   // the loader, which was to be
  kError,          // any other
};

struct Finding {
  What what;
  std::string path;    // of the DLL or the cache file; of kRunAlready the package id
  std::string origin;  // the copy that decides, empty when it cannot be known; of kErased what went
  std::string text;    // as it was logged, where that is a message for people
  std::string time;    // where the log is a desk's
  std::string hook;    // in which it happened, innermost; empty when it cannot be known
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

struct LogFacts {
  std::vector<Pass> passes;         // by their first lines
  LineNumber lines = 0;             // that were read
  LineNumber unread_from = 0;       // here the reader stopped, having too much to tell; 0: nowhere
  std::vector<LineNumber> unclear;  // name a duplicate, but not what it was compared with; or are damaged
  LineNumber unclear_lines = 0;     // how many there are; the first ones are in the list
};

struct LogMessage;
class PassReader;

class FactReader {
 public:
  FactReader();
  ~FactReader();

  // The next line, without its line feed. One that is not `whole` was longer than is taken.
  void Read(std::string_view line, bool whole = true);
  LogFacts Take();

 private:
  bool IsDamaged(const LogMessage& message);
  void PassOn(const LogMessage& message);
  void Keep(PassReader& reader);
  void NoteUnclear();
  void MakeRoom();

  LogFacts facts_;
  std::map<std::string, std::unique_ptr<PassReader>> open_;  // by process
  std::string before_;                                       // the line before
  std::size_t weight_ = 0;                                   // of all that was found
  std::size_t left_open_ = 0;                                // how many of the passes were left open for another one
  bool records_ = false;                                     // the log is a desk's
  bool continues_ = false;                                   // a message with a line feed has more to come
};

// Reads a file from a place on. Throws host::DeviceError when it cannot be read.
LogFacts ReadLogFacts(const std::filesystem::path& file, std::uintmax_t from = 0);

// The directory of the package that a path lies in: what is below the first directory whose name ends in "apps". Empty
// when there is none.
std::string PackageRootIn(const std::string& path);

// A DLL of a package that the plug-in took for a duplicate.
struct Duplicate {
  std::string origin;              // the copy that counts
  std::string duplicated;          // the package's copy
  bool origin_read_write = false;  // so the package's copy stays
  std::string time{};              // of the report
};

// The same of a single operation, whichever of its passes did it.
struct LogSummary {
  std::vector<Duplicate> duplicates;  // in the order of the log, each file once
  std::string guide;                  // the line that names the guide page; empty when the install did not fail
  bool restart_failed = false;
  bool not_inhouse = false;         // a hook found no "dotnet-" application and did nothing
  std::vector<std::string> errors;  // all other errors
};
LogSummary Summarize(const LogFacts& facts);

}  // namespace orvelbox

#endif
