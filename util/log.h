// The function tracer, and with it the log line format, which lives in base.
#ifndef UTIL_LOG_H_
#define UTIL_LOG_H_

#include <string>

#include "base/log_line.h"
#include "morvath/export.h"

// Frames a function: a local at its top writes the entry line and opens a trace span, and its end, by whichever path
// the function is left, writes the exit line and closes the span.
class ORVEL_EXPORT FunctionEntryExitTracker {
 public:
  // `signature` is the function's full signature, spelled out because compilers differ in theirs; `filePath`
  // its source file or unit, of which the part after the last "/" is shown; `line` its line. The texts are copied. A
  // null text raises std::logic_error before anything is logged.
  FunctionEntryExitTracker(const char* signature, const char* filePath, int line);
  ~FunctionEntryExitTracker();

  FunctionEntryExitTracker(const FunctionEntryExitTracker&) = delete;
  FunctionEntryExitTracker& operator=(const FunctionEntryExitTracker&) = delete;

 private:
  std::string signature_;
  std::string fileName_;
  std::string filePath_;
  int line_;
  std::string label_;
};

#endif
