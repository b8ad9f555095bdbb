// FunctionEntryExitTracker. The macros of the log lines are in the header.
#include "util/log.h"

#include "base/log_texts.h"
#include "orvel/trace.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "log"};

}  // namespace

FunctionEntryExitTracker::FunctionEntryExitTracker(const char* signature, const char* filePath, int line)
    : signature_(signature), filePath_(filePath), line_(line) {
  fileName_.assign(filePath_, filePath_.rfind('/') + 1);
  const std::string line_text = std::to_string(line_);
  label_.reserve(fileName_.size() + line_text.size() + signature_.size() + 3);
  label_.append(fileName_).append("(").append(line_text).append(") ").append(signature_);
  LOG_TRACE(LOG_TEXT_ENTRY "%s", label_.c_str());
  trace_begin(label_.c_str());
}

FunctionEntryExitTracker::~FunctionEntryExitTracker() {
  LOG_TRACE(LOG_TEXT_EXIT "%s", label_.c_str());
  trace_end();
}
