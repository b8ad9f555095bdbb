// The function tracer. The format of log lines is in base/log_line.h.
#ifndef UTIL_LOG_H_
#define UTIL_LOG_H_

#include <string>

#include "base/log_line.h"  // IWYU pragma: export
#include "morvath/export.h"

// Traces a function. As a local variable at its top, the constructor writes the entry line and opens a trace span, and
// the destructor writes the exit line and closes the span, on every way out of the function.
class ORVEL_EXPORT FunctionEntryExitTracker {
 public:
  // `signature`: the full signature, spelled out because compilers print it differently. `filePath`: the source file or
  // unit; the part after the last "/" is shown. `line`: its line field. The texts are copied. Throws std::logic_error
  // for a null text, before anything is logged.
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
