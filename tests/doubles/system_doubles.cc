// Doubles of the log, the trace spans, the loader restart, the path configuration and the installer library.
#include <cstdarg>
#include <optional>
#include <string>
#include <utility>

#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/ovplatform.h"
#include "orvel/pkgmgr_installer.h"
#include "orvel/trace.h"
#include "tests/doubles/platform.h"

namespace {

using doubles::Current;
using doubles::Event;
using doubles::LogLine;

std::string Text(const char* text) { return text == nullptr ? "(null)" : text; }

// Reads the first three arguments of a line of the common format.
void ReadPosition(LogLine& line, va_list arguments) {
  if (line.format.rfind(doubles::kLineStart, 0) != 0) return;
  line.unit = Text(va_arg(arguments, const char*));
  line.function = Text(va_arg(arguments, const char*));
  line.line = va_arg(arguments, int);
}

}  // namespace

int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...) {
  if (!Current().keeps_journal && !Current().on_event) return 0;
  LogLine line;
  line.log_id = log_id;
  line.priority = priority;
  line.tag = Text(tag);
  line.format = Text(format);

  va_list arguments;
  va_start(arguments, format);
  va_list position;
  va_copy(position, arguments);
  ReadPosition(line, position);
  va_end(position);
  line.text = doubles::TextOf(format, arguments);
  va_end(arguments);

  const auto size = static_cast<int>(line.text.size());
  Current().RecordEvent({Event::Kind::kLog, "", std::move(line)});
  return Current().TakeFailure("__dlog_print").value_or(size);
}

// The name is recorded as passed, not used as a format.
void trace_begin(const char* name, ...) { Current().RecordEvent({Event::Kind::kSpanBegin, Text(name), {}}); }

void trace_end(void) { Current().RecordEvent({Event::Kind::kSpanEnd, "", {}}); }

int aul_restart_loader(const char* loaderName) {
  Current().RecordEvent({Event::Kind::kRestart, Text(loaderName), {}});
  return Current().TakeFailure("aul_restart_loader").value_or(0);
}

const char* ovplatform_getenv(int variable) {
  Current().RecordCall("ovplatform_getenv(" + std::to_string(variable) + ")");
  const std::optional<std::string>& root = Current().read_write_root;
  return variable == OVPLATFORM_RW_APPS_ROOT && root ? root->c_str() : nullptr;
}

int pkgmgr_installer_info_get_target_uid(uid_t* uid) {
  Current().RecordCall("pkgmgr_installer_info_get_target_uid()");
  if (const auto failure = Current().TakeFailure("pkgmgr_installer_info_get_target_uid")) return *failure;
  *uid = Current().target_uid;
  return 0;
}
