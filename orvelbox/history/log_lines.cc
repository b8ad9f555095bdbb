// Reads a log file block by block.
#include "orvelbox/history/log_lines.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/host/files.h"

namespace orvelbox {

LogLines::LogLines(std::filesystem::path file, std::uintmax_t from, std::size_t longest)
    : file_(std::move(file)), log_(open(file_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)), longest_(longest) {
  const bool there = from == 0 || (log_ && lseek(log_.get(), static_cast<off_t>(from), SEEK_SET) >= 0);
  if (!log_ || !there) host::ThrowFileError(file_, "read", errno);
}

std::optional<LogLines::Line> LogLines::Next() {
  for (;;) {
    const std::size_t end = pending_.find('\n', searched_);
    if (end != std::string::npos) return Take(end);
    // Of a line that is too long, what is beyond is dropped as it comes.
    if (pending_.size() > longest_) {
      pending_.resize(longest_);
      whole_ = false;
    }
    searched_ = pending_.size();
    if (!ReadMore()) return std::nullopt;
  }
}

std::optional<LogLines::Line> LogLines::Last() {
  if (pending_.empty()) return std::nullopt;
  return Take(pending_.size());
}

void LogLines::FollowTruncation() {
  struct stat status {};
  if (fstat(log_.get(), &status) != 0 || status.st_size >= lseek(log_.get(), 0, SEEK_CUR)) return;
  lseek(log_.get(), 0, SEEK_SET);
  pending_.clear();
  searched_ = 0;
  whole_ = true;
}

bool LogLines::ReadMore() {
  std::array<char, 65536> block;
  const ssize_t length = TEMP_FAILURE_RETRY(read(log_.get(), block.data(), block.size()));
  if (length < 0) host::ThrowFileError(file_, "read", errno);
  pending_.append(block.data(), static_cast<std::size_t>(length));
  return length > 0;
}

LogLines::Line LogLines::Take(std::size_t length) {
  Line line{pending_.substr(0, std::min(length, longest_)), whole_ && length <= longest_};
  pending_.erase(0, length + 1);
  searched_ = 0;
  whole_ = true;
  return line;
}

}  // namespace orvelbox
