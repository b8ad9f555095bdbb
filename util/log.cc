// FunctionEntryExitTracker. The macros of the log lines are in the header.
#include "util/log.h"

#include "orvel/trace.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "log"};

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace

FunctionEntryExitTracker::FunctionEntryExitTracker(const char* signature, const char* filePath, int line)
    : signature_(signature), fileName_(BaseName(filePath)), filePath_(filePath), line_(line) {
  label_ = fileName_ + "(" + std::to_string(line_) + ") " + signature_;
  LOG_TRACE(" +DotNETLog:%s", label_.c_str());
  trace_begin(label_.c_str());
}

FunctionEntryExitTracker::~FunctionEntryExitTracker() {
  LOG_TRACE("-DotNETLog:%s", label_.c_str());
  trace_end();
}
