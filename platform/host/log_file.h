// The device's log file: one record per line, safe for concurrent writers. A record is
//   2026-11-21T08:00:00.123Z E NETCORE_INSTALLER_PLUGIN 4711 text
// with UTC time, priority letter (D, I, E), tag, pid and text. In tag and text, backslashes and control characters are
// escaped as in C ("\\", "\n", "\e", "\x01"), so that no message can forge a record or control a terminal. The line
// feed at the end of a message is dropped. orvelbox/history/log_view displays the records.
#ifndef ORVEL_PLATFORM_HOST_LOG_FILE_H_
#define ORVEL_PLATFORM_HOST_LOG_FILE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace host {

struct LogRecord {
  std::string time;
  char priority = 'D';
  std::string tag;
  long pid = 0;
  std::string text;  // unescaped: colour sequences and inner line feeds as logged
};

// The letter of a platform priority (3 -> 'D', 4 -> 'I', 6 -> 'E'); '?' for any other value.
char PriorityLetter(int priority);

// Appends one record in one write, with the current time and this process's id. Creates the file if necessary. Returns
// false when it could not be written. Never throws.
bool AppendLogRecord(const std::filesystem::path& file, char priority, std::string_view tag, std::string_view text);

// Parses one line of the file, without its line feed. Nothing when it is no record.
std::optional<LogRecord> ParseLogRecord(std::string_view line);

}  // namespace host

#endif
