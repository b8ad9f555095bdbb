// The device's log on the screen.
#include "orvelbox/history/log_view.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <nlohmann/json.hpp>

#include "base/unique_fd.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/history/log_lines.h"
#include "orvelbox/history/log_message.h"
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

void ShowRecords(LogLines& lines, const LogView& view) {
  while (const auto line = lines.Next()) {
    const auto record = host::ParseLogRecord(line->text);
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
  LogLines lines(device.Log());
  if (!view.follow) return ShowRecords(lines, view);
  Watch watch(device.Log());
  for (;;) {
    ShowRecords(lines, view);
    if (!FlushOutput()) return;
    watch.Wait();
    lines.FollowTruncation();
  }
}

}  // namespace orvelbox
