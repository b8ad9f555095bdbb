// The device's log file: one record a line, safe for concurrent writers. A record reads
//   2026-11-21T08:00:00.123Z E NETCORE_INSTALLER_PLUGIN 4711 text
// with UTC time, priority letter (D, I, E), tag, pid and text. In tag and text a backslash and every control
// character is escaped as in C ("\\", "\n", "\e", "\x01"), so that no message can forge a record or reach a terminal
// unread; the line feed that ends a message is dropped. They are shown in orvelbox/history/log_view.
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
  std::string text;  // unescaped: colour sequences and line feeds inside it are as logged
};

// The letter of a platform priority (3 -> 'D', 4 -> 'I', 6 -> 'E'); '?' for any other.
char PriorityLetter(int priority);

// Appends one record in one write, with the present time and this process's id; creates the file where it is
// missing. Returns false when it could not be written; never throws.
bool AppendLogRecord(const std::filesystem::path& file, char priority, std::string_view tag, std::string_view text);

// Reads one line of the file (without its line feed). Nothing when it is no record.
std::optional<LogRecord> ParseLogRecord(std::string_view line);

}  // namespace host

#endif
