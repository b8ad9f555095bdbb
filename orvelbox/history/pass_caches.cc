// What the messages within a pass say of cache files and the loader.
#include <algorithm>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "base/log_texts.h"
#include "orvelbox/history/log_calls.h"
#include "orvelbox/history/pass_reader.h"

namespace orvelbox {
namespace {

bool IsCachePath(std::string_view path) {
  return std::any_of(std::begin(kCacheFiles), std::end(kCacheFiles),
                     [path](const char* name) { return path == std::string(kCacheDirectory) + name; });
}

// An entry goes with the separator before or behind it.
std::string_view WithoutSeparators(std::string_view entry) {
  if (!entry.empty() && entry.front() == kEntrySeparator) entry.remove_prefix(1);
  if (!entry.empty() && entry.back() == kEntrySeparator) entry.remove_suffix(1);
  return entry;
}

}  // namespace

bool PassReader::TellOfCaches(const LogMessage& message) {
  std::string_view text = message.text;
  if (text == LOG_TEXT_RESTART_FAILED) {
    Add(What::kNotRestarted, message);
  } else if (TakePrefix(text, LOG_TEXT_SAVE_FILE) && IsCachePath(text)) {
    step_ = Step::kSaving;
    steps_ = {line_};
    file_ = text;
  } else if (text == LOG_TEXT_SAVED && before_ == Step::kSaving) {
    AddWritten(message);
  } else if (TakePrefix(text, LOG_TEXT_ERASED)) {
    AddErasing(message, text);
  } else {
    return false;
  }
  return true;
}

void PassReader::AddErasing(const LogMessage& message, std::string_view text) {
  const std::size_t from = text.rfind(LOG_TEXT_ERASED_FROM);
  if (from == std::string_view::npos) return;
  const std::string_view file = text.substr(from + std::string_view(LOG_TEXT_ERASED_FROM).size());
  if (!IsCachePath(file)) return;
  Finding& erasing = Add(What::kErasing, message);
  erasing.origin = WithoutSeparators(text.substr(0, from));
  erasing.path = file;
}

// The file has its new text. Only where nothing is added to that, what went out of it is gone.
void PassReader::AddWritten(const LogMessage& message) {
  Finding& written = Add(What::kWritten, message);
  written.path = file_;
  written.lines = {steps_.front(), line_};
  const std::vector<LineNumber> lines = written.lines;
  if (frames_.empty() || frames_.back().function != kTakeOut) return;
  for (Finding& finding : pass_.findings) {
    if (finding.what != What::kErasing || finding.path != file_) continue;
    finding.what = What::kErased;
    finding.lines.insert(finding.lines.end(), lines.begin(), lines.end());
  }
}

}  // namespace orvelbox
