// The reference programs' log lines.
#include "bench/reference_log.h"

#include "orvel/dlog.h"
#include "orvel/trace.h"

namespace bench {

namespace {

constexpr const char* kPluginTag = "NETCORE_INSTALLER_PLUGIN";
constexpr const char* kUtilityTag = "QUARNEL";

}  // namespace

void Enter(const char* signature) {
  __dlog_print(DLOG_MAIN, DLOG_DEBUG, kUtilityTag, "%s: %s(%d) > \033[90m +DotNETLog:morvath(100) %s\033[0m\n", "log",
               "FunctionEntryExitTracker", 20, signature);
  trace_begin("morvath(100) %s", signature);
}

void Leave(const char* signature) {
  __dlog_print(DLOG_MAIN, DLOG_DEBUG, kUtilityTag, "%s: %s(%d) > \033[90m-DotNETLog:morvath(100) %s\033[0m\n", "log",
               "~FunctionEntryExitTracker", 20, signature);
  trace_end();
}

void Debug(const char* function, int line, const char* text, const char* rest) {
  __dlog_print(DLOG_MAIN, DLOG_DEBUG, kPluginTag, "%s: %s(%d) > \033[0m%s%s\033[0m\n", "morvath", function, line, text,
               rest);
}

void Error(const char* function, int line, const char* text, const char* rest) {
  __dlog_print(DLOG_MAIN, DLOG_ERROR, kPluginTag, "%s: %s(%d) > \033[31m%s%s\033[0m\n", "morvath", function, line, text,
               rest);
}

void LogCompared(const char* origin, const char* duplicated) {
  __dlog_print(DLOG_MAIN, DLOG_DEBUG, kPluginTag,
               "%s: %s(%d) > \033[0m### Duplicated Checker ### Origin : %s, Duplicated : %s\033[0m\n", "morvath",
               "isDuplicatedDll", 80, origin, duplicated);
}

void LogErased(const char* span, const char* file) {
  __dlog_print(DLOG_MAIN, DLOG_INFO, kPluginTag, "%s: %s(%d) > \033[36merase: %s from cache file: %s\033[0m\n",
               "morvath", "readCacheAndRemovePkg", 412, span, file);
}

}  // namespace bench
