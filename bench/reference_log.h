// The plug-in's log lines, formatted in the same way by the reference programs, from ready texts.
#ifndef BENCH_REFERENCE_LOG_H_
#define BENCH_REFERENCE_LOG_H_

namespace bench {

// The entry and exit of a traced function, with its span.
void Enter(const char* signature);
void Leave(const char* signature);

// Lines of the plug-in: a text and its continuation.
void Debug(const char* function, int line, const char* text, const char* rest);
void Error(const char* function, int line, const char* text, const char* rest);
// isDuplicatedDll's first line, and readCacheAndRemovePkg's line for an entry.
void LogCompared(const char* origin, const char* duplicated);
void LogErased(const char* span, const char* file);

}  // namespace bench

#endif
