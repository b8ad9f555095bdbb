// Logs as they come off other devices, made of a desk's.
#ifndef TESTS_ORVELBOX_HISTORY_LOG_FORMS_H_
#define TESTS_ORVELBOX_HISTORY_LOG_FORMS_H_

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "orvelbox/history/log_findings.h"
#include "platform/host/log_file.h"

namespace orvelbox {

// A line, and which line of which log it was.
struct TestLine {
  std::string text;
  std::size_t log;
  LineNumber line;
  bool damaged = false;
};
using TestLog = std::vector<TestLine>;

// A desk's log, the `number`th.
TestLog ReadTestLog(const std::filesystem::path& file, std::size_t number);

using Form = void (*)(const TestLine& line, const host::LogRecord& record, TestLog& log);
// All forms, by their names.
const std::vector<std::pair<const char*, Form>>& LogForms();
// A desk's log in another form.
TestLog In(Form form, const TestLog& log);

}  // namespace orvelbox

#endif
