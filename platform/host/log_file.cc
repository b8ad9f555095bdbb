// Writes and reads the device's log.
#include "platform/host/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "base/unique_fd.h"
#include "platform/host/escape.h"

namespace host {
namespace {

constexpr std::string_view kTimeShape = "0000-00-00T00:00:00.000Z";  // 0: any digit

std::string PresentTime() {
  using std::chrono::milliseconds;
  const auto now = std::chrono::time_point_cast<milliseconds>(std::chrono::system_clock::now());
  const std::int64_t since_epoch = now.time_since_epoch().count();
  const auto seconds = static_cast<std::time_t>(since_epoch / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  std::array<char, 64> text{};
  const size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::snprintf(text.data() + length, text.size() - length, ".%03dZ", static_cast<int>(since_epoch % 1000));
  return text.data();
}

std::string RecordLine(char priority, std::string_view tag, std::string_view text) {
  if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
  std::string line = PresentTime() + ' ' + priority + ' ';
  line += EscapeWord(tag) + ' ' + std::to_string(getpid()) + ' ' + EscapeText(text) + '\n';
  return line;
}

// Truncates a record that was written partially for lack of space, so that the next record starts on its own line. Does
// nothing when another writer has appended to it.
void RemovePartialRecord(int fd, off_t length) {
  struct stat status {};
  const off_t end = lseek(fd, 0, SEEK_CUR);
  if (end < length || fstat(fd, &status) != 0 || status.st_size != end) return;
  [[maybe_unused]] const int result = ftruncate(fd, end - length);
}

bool HasShape(std::string_view text, std::string_view shape) {
  if (text.size() != shape.size()) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool digit = text[i] >= '0' && text[i] <= '9';
    if (shape[i] == '0' ? !digit : text[i] != shape[i]) return false;
  }
  return true;
}

// Removes the text up to the next space from the front of `rest` and returns it. Nothing when there is no space.
std::optional<std::string_view> NextField(std::string_view& rest) {
  const size_t end = rest.find(' ');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view field = rest.substr(0, end);
  rest.remove_prefix(end + 1);
  return field;
}

bool ReadPid(std::string_view text, long* pid) {
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, *pid);
  return result.ec == std::errc() && result.ptr == end && *pid > 0;
}

bool IsPriority(std::string_view field) {
  return field.size() == 1 && std::string_view("DIE?").find(field[0]) != std::string_view::npos;
}

}  // namespace

char PriorityLetter(int priority) {
  constexpr std::string_view kLetters = "???DI?E";
  return priority >= 0 && priority < static_cast<int>(kLetters.size()) ? kLetters[static_cast<size_t>(priority)] : '?';
}

bool AppendLogRecord(const std::filesystem::path& file, char priority, std::string_view tag,
                     std::string_view text) try {
  const std::string line = RecordLine(priority, tag, text);
  const UniqueFd fd(open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666));
  if (!fd) return false;
  const ssize_t written = write(fd.get(), line.data(), line.size());
  if (written == static_cast<ssize_t>(line.size())) return true;
  if (written > 0) RemovePartialRecord(fd.get(), written);
  return false;
} catch (const std::exception&) {
  return false;
}

std::optional<LogRecord> ParseLogRecord(std::string_view line) {
  const auto time = NextField(line);
  const auto priority = NextField(line);
  const auto tag = NextField(line);
  const auto pid = NextField(line);
  if (!pid || !HasShape(*time, kTimeShape) || !IsPriority(*priority)) return std::nullopt;
  LogRecord record;
  if (!ReadPid(*pid, &record.pid)) return std::nullopt;
  auto plain_tag = UnescapeText(*tag);
  auto plain_text = UnescapeText(line);
  if (!plain_tag || !plain_text) return std::nullopt;
  record.time = *time;
  record.priority = priority->front();
  record.tag = std::move(*plain_tag);
  record.text = std::move(*plain_text);
  return record;
}

}  // namespace host
