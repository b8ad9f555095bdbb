// The plug-in's log lines as the reference programs write them: formatted as the plug-in's are, from texts that are at
// hand.
#ifndef BENCH_REFERENCE_LOG_H_
#define BENCH_REFERENCE_LOG_H_

namespace bench {

// A traced function's entry and exit, its span included.
void Enter(const char* signature);
void Leave(const char* signature);

// Lines of the plug-in: a text and what follows it.
void Debug(const char* function, int line, const char* text, const char* rest);
void Error(const char* function, int line, const char* text, const char* rest);
// isDuplicatedDll's first line, and readCacheAndRemovePkg's line for an entry.
void LogCompared(const char* origin, const char* duplicated);
void LogErased(const char* span, const char* file);

}  // namespace bench

#endif
