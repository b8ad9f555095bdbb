// The device's log on the screen.

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/unique_fd.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/history/log.h"
#include "platform/host/files.h"
#include "platform/host/json.h"

namespace orvelbox {
namespace {

std::string ShowText(std::string_view text, bool colour) {
  std::string shown;
  bool coloured = false;
  ForEachPiece(text, [&](std::string_view piece, bool is_colour) {
    if (!is_colour) shown += Printable(piece);
    if (is_colour && colour) shown += piece;
    coloured = coloured || is_colour;
  });
  return shown + (colour && coloured ? "\x1b[0m" : "");
}

std::string RecordJson(const host::LogRecord& record) {
  return host::AsciiJson({{"time", record.time},
                          {"priority", std::string(1, record.priority)},
                          {"tag", record.tag},
                          {"pid", record.pid},
                          {"text", record.text}});
}

// Reads the log from its front, whole lines only, as they come.
class LogReader {
 public:
  explicit LogReader(const std::filesystem::path& file) : file_(file), log_(open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (!log_) host::ThrowFileError(file, "read", errno);
  }

  // The next whole line; nothing at the present end of the file.
  std::optional<std::string> Next() {
    std::size_t end = pending_.find('\n');
    while (end == std::string::npos && ReadMore()) end = pending_.find('\n');
    if (end == std::string::npos) return std::nullopt;
    std::string line = pending_.substr(0, end);
    pending_.erase(0, end + 1);
    return line;
  }

  // Begins again when the file was emptied in the meantime.
  void FollowTruncation() {
    struct stat status {};
    if (fstat(log_.get(), &status) != 0 || status.st_size >= lseek(log_.get(), 0, SEEK_CUR)) return;
    lseek(log_.get(), 0, SEEK_SET);
    pending_.clear();
  }

 private:
  bool ReadMore() {
    std::array<char, 65536> block;
    const ssize_t length = read(log_.get(), block.data(), block.size());
    if (length < 0) host::ThrowFileError(file_, "read", errno);
    pending_.append(block.data(), static_cast<std::size_t>(length));
    return length > 0;
  }

  std::filesystem::path file_;
  UniqueFd log_;
  std::string pending_;
};

// Waits for changes of a file.
class Watch {
 public:
  explicit Watch(const std::filesystem::path& file) : file_(file), inotify_(inotify_init1(IN_CLOEXEC)) {
    if (!inotify_ || inotify_add_watch(inotify_.get(), file.c_str(), IN_MODIFY) < 0) {
      host::ThrowFileError(file, "watch", errno);
    }
  }

  void Wait() {
    std::array<char, 4096> events;
    if (read(inotify_.get(), events.data(), events.size()) < 0) host::ThrowFileError(file_, "watch", errno);
  }

 private:
  std::filesystem::path file_;
  UniqueFd inotify_;
};

void ShowRecords(LogReader& reader, const LogView& view) {
  while (const auto line = reader.Next()) {
    const auto record = host::ParseLogRecord(*line);
    if (!record || !Passes(view.filter, *record)) continue;
    SayColoured(view.json ? RecordJson(*record) : ShowRecord(*record, view.colour));
  }
}

}  // namespace

bool Passes(const LogFilter& filter, const host::LogRecord& record) {
  constexpr std::string_view kAscending = "DIE";  // what is not among them comes last
  return (filter.tag.empty() || filter.tag == record.tag) &&
         kAscending.find(record.priority) >= kAscending.find(filter.priority);
}

std::string ShowRecord(const host::LogRecord& record, bool colour) {
  std::string_view text = record.text;
  while (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  return record.time + " " + record.priority + " " + Printable(record.tag) + " " + std::to_string(record.pid) + " " +
         ShowText(text, colour);
}

void ShowLog(const host::Device& device, const LogView& view) {
  LogReader reader(device.Log());
  if (!view.follow) return ShowRecords(reader, view);
  Watch watch(device.Log());
  for (;;) {
    ShowRecords(reader, view);
    if (!FlushOutput()) return;
    watch.Wait();
    reader.FollowTruncation();
  }
}

}  // namespace orvelbox
