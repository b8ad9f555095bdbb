// The lines of a log file, as they come; no more of them is in memory than the present one.
#ifndef ORVEL_ORVELBOX_HISTORY_LOG_LINES_H_
#define ORVEL_ORVELBOX_HISTORY_LOG_LINES_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "base/unique_fd.h"

namespace orvelbox {

class LogLines {
 public:
  struct Line {
    std::string text;   // without its line feed
    bool whole = true;  // otherwise its rest was longer than is taken
  };

  // Opens the file, to be read from a place on. Every function throws host::DeviceError when it cannot be read.
  explicit LogLines(std::filesystem::path file, std::uintmax_t from = 0, std::size_t longest = std::string::npos);

  // The next line that has its line feed; nothing at the present end of the file.
  std::optional<Line> Next();
  // What stands behind the last line feed; nothing when that is nothing.
  std::optional<Line> Last();
  // Begins again when the file was emptied in the meantime.
  void FollowTruncation();

 private:
  bool ReadMore();
  Line Take(std::size_t length);

  std::filesystem::path file_;
  UniqueFd log_;
  std::size_t longest_;
  std::string pending_;
  std::size_t searched_ = 0;  // no line feed stands in front of this
  bool whole_ = true;         // nothing of the pending line was dropped
};

}  // namespace orvelbox

#endif
