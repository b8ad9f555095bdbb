// liborvel_dlog: writes messages to the log of the device that the environment names.
#include "orvel/dlog.h"

#include "platform/host/c_boundary.h"
#include "platform/host/device.h"
#include "platform/host/log_file.h"

int __dlog_print(int /*log_id*/, int priority, const char* tag, const char* format, ...) {
  const host::KeepErrno keep_errno;
  if (tag == nullptr || format == nullptr) return -1;
  va_list arguments;
  va_start(arguments, format);
  const int result = host::AnswerOr(-1, [&] {
    const std::string text = host::FormatText(format, arguments);
    const auto device = host::DeviceOfEnvironment();
    if (!device || !host::AppendLogRecord(device->Log(), host::PriorityLetter(priority), tag, text)) return -1;
    return static_cast<int>(text.size());
  });
  va_end(arguments);
  return result;
}
