// With the prefix of a device, without anything but the message, errors only, one tag only.
#include "tests/orvelbox/history/log_forms.h"

#include "base/log_line.h"
#include "tests/support/files.h"

namespace orvelbox {
namespace {

std::string WithoutColours(std::string text) {
  for (std::size_t at = 0; (at = text.find("\x1b[")) != std::string::npos;) text.erase(at, text.find('m', at) - at + 1);
  return text;
}

void OfDesk(const TestLine& line, const host::LogRecord& /*record*/, TestLog& log) { log.push_back(line); }

void OfDevice(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  std::string text = record.text;
  for (std::size_t end = 0; end != std::string::npos; text.erase(0, end + 1)) {
    end = text.find('\n');
    log.push_back({"11-22 04:10:00.1 " + std::string(1, record.priority) + "/" + record.tag +
                       "( 7): " + text.substr(0, end) + "\r",
                   line.log, line.line});
    if (end == std::string::npos) break;
  }
}

void Bare(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  const std::string text = WithoutColours(record.text);
  log.push_back({text.substr(0, text.find('\n')), line.log, line.line});
}

void ErrorsOnly(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  if (record.priority == 'E') Bare(line, record, log);
}

void UtilityTag(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  if (record.tag == kUtilityTag) log.push_back(line);
}

void PluginTag(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  if (record.tag == kPluginTag) log.push_back(line);
}

// The plug-in's tag from information on, the other one whole.
void MixedPriorities(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  if (record.tag != kPluginTag || record.priority != 'D') Bare(line, record, log);
}

}  // namespace

const std::vector<std::pair<const char*, Form>>& LogForms() {
  static const std::vector<std::pair<const char*, Form>> forms = {{"desk", OfDesk},
                                                                  {"device", OfDevice},
                                                                  {"bare", Bare},
                                                                  {"errors", ErrorsOnly},
                                                                  {"utility", UtilityTag},
                                                                  {"plugin", PluginTag},
                                                                  {"priorities", MixedPriorities}};
  return forms;
}

TestLog In(Form form, const TestLog& log) {
  TestLog other;
  for (const TestLine& line : log) form(line, host::ParseLogRecord(line.text).value(), other);
  return other;
}

TestLog ReadTestLog(const std::filesystem::path& file, std::size_t number) {
  TestLog log;
  for (const std::string& line : support::Lines(support::ReadFile(file))) log.push_back({line, number, log.size() + 1});
  return log;
}

}  // namespace orvelbox
