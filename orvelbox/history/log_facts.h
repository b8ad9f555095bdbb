// What a log says that the plug-in did: the one reader of its messages (pure: lines in, facts out), for the commands
// that tell of an operation, of a package and of a whole log. Each fact names the lines that it rests on; what cannot
// be known is left open. Words are found elsewhere.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_FACTS_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_FACTS_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "orvelbox/history/log_findings.h"

namespace orvelbox {

// Said where `unread_from` is set.
inline constexpr const char* kMoreThanCanBeTold = "the log holds more than can be told at once";

struct LogFacts {
  std::vector<Pass> passes;         // by their first lines
  LineNumber lines = 0;             // that were read
  LineNumber unread_from = 0;       // here the reader stopped, having too much to tell; 0: nowhere
  bool of_plugin = false;           // there is a line of the plug-in itself, not only of the libraries that it logs by
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
  bool IsDoubled(std::string_view line);
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

// A DLL of a package that the plug-in took for a duplicate.
struct Duplicate {
  std::string origin;            // the copy that counts
  std::string duplicated;        // the package's copy
  What fate = What::kDuplicate;  // what became of that, as far as the log tells
  std::string time{};            // of the report
};

// The same of a single operation, whichever of its passes did it.
struct LogSummary {
  std::vector<Duplicate> duplicates;  // in the order of the log, each file once
  std::string guide;                  // the line that names the guide page; empty when the install did not fail
  bool restart_failed = false;
  bool not_inhouse = false;         // a hook did not take the package for a dotnet-inhouse one and did nothing
  std::vector<std::string> errors;  // all other errors
  LineNumber unread_from = 0;       // as in LogFacts
};
LogSummary Summarize(const LogFacts& facts);

}  // namespace orvelbox

#endif
