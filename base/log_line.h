// The format of a log line, and the only call of the platform's log. Message texts are at the place that logs them.
#ifndef BASE_LOG_LINE_H_
#define BASE_LOG_LINE_H_

#include "orvel/dlog.h"  // IWYU pragma: export

// Names a source unit in its log lines. Every file that logs has a constant `kLogSource` in scope.
struct LogSource {
  const char* tag;
  const char* unit;  // the unit's file name without folder and extension
};

inline constexpr const char* kPluginTag = "NETCORE_INSTALLER_PLUGIN";
inline constexpr const char* kUtilityTag = "QUARNEL";
inline constexpr const char* kPluginUnit = "morvath";

// Logs one message with `kLogSource` and the name of the calling function. These are macros for two reasons: the format
// must be one literal so that the compiler checks its arguments, and __func__ and __LINE__ must be the caller's.
// The _AT forms also take the line field: log readers search for some line numbers, which must not change.
// The _IN forms also take the function name, for lambdas and helpers whose own name means nothing to log readers.
#define LOG_MESSAGE_(priority, colour, function, line, format, ...)                                             \
  __dlog_print(DLOG_MAIN, priority, kLogSource.tag, "%s: %s(%d) > " colour format "\033[0m\n", kLogSource.unit, \
               function, line, ##__VA_ARGS__)
#define LOG_DEBUG_IN(function, line, format, ...) \
  LOG_MESSAGE_(DLOG_DEBUG, "\033[0m", function, line, format, ##__VA_ARGS__)
#define LOG_DEBUG_AT(line, format, ...) LOG_DEBUG_IN(__func__, line, format, ##__VA_ARGS__)
#define LOG_INFO_IN(function, line, format, ...) \
  LOG_MESSAGE_(DLOG_INFO, "\033[36m", function, line, format, ##__VA_ARGS__)
#define LOG_INFO_AT(line, format, ...) LOG_INFO_IN(__func__, line, format, ##__VA_ARGS__)
#define LOG_ERROR_IN(function, line, format, ...) \
  LOG_MESSAGE_(DLOG_ERROR, "\033[31m", function, line, format, ##__VA_ARGS__)
#define LOG_ERROR_AT(line, format, ...) LOG_ERROR_IN(__func__, line, format, ##__VA_ARGS__)
#define LOG_DEBUG(format, ...) LOG_DEBUG_AT(__LINE__, format, ##__VA_ARGS__)
#define LOG_INFO(format, ...) LOG_INFO_AT(__LINE__, format, ##__VA_ARGS__)
#define LOG_ERROR(format, ...) LOG_ERROR_AT(__LINE__, format, ##__VA_ARGS__)
#define LOG_TRACE(format, ...) LOG_MESSAGE_(DLOG_DEBUG, "\033[90m", __func__, __LINE__, format, ##__VA_ARGS__)

#endif
