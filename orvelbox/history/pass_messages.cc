// What the messages within a pass say of DLLs and of the package.
#include <algorithm>
#include <utility>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "base/log_line.h"
#include "base/log_texts.h"
#include "orvelbox/history/log_calls.h"
#include "orvelbox/history/pass_reader.h"

namespace orvelbox {
namespace {

constexpr std::size_t kComparisonsKept = 8;

bool IsDllPath(std::string_view path) { return HasPrefix(path, "/") && IsAssemblyName(path); }

std::string_view NameIn(std::string_view path) { return path.substr(path.rfind('/') + 1); }

// The origin that was compared with `dll`, by the text of the comparison. Empty when it tells of another.
std::string OriginOf(std::string_view text, const std::string& dll) {
  const std::string end = LOG_TEXT_COMPARED_WITH + dll;
  if (!HasSuffix(text, end)) return "";
  const std::string origin(text.substr(0, text.size() - end.size()));
  return IsDllPath(origin) && NameIn(origin) == NameIn(dll) ? origin : "";
}

constexpr std::string_view kErrors[] = {LOG_TEXT_NO_CACHE_FILE, LOG_TEXT_NOT_WRITTEN,  LOG_TEXT_LINK,
                                        LOG_TEXT_REMOVE_CALLED, LOG_TEXT_ADD_CALLED,   LOG_TEXT_NO_SEARCH,
                                        LOG_TEXT_NO_PACKAGE,    LOG_TEXT_REMOVE_FAILED};

// An error that is told apart by its text, where no colour does.
bool IsError(const LogMessage& message) {
  return message.error || std::any_of(std::begin(kErrors), std::end(kErrors),
                                      [&](std::string_view begin) { return HasPrefix(message.text, begin); });
}

}  // namespace

Finding& PassReader::Add(What what, const LogMessage& message) {
  pass_.findings.push_back({what, "", "", message.text, message.time, {line_}});
  weight_ += sizeof(Finding) + 3 * message.text.size();
  return pass_.findings.back();
}

bool PassReader::Tell(const LogMessage& message) {
  const std::string_view function = ShortName(message.function);
  const bool traced = IsTraced(function) || IsEvent(function);
  const bool plugin = traced || message.unit == kPluginUnit;
  // Launcher tools log by the shared units as well; an error without a unit is told wherever it stands.
  if (!plugin && !InPass() && !message.unit.empty()) return true;
  if (open_ && pass_.ended) Close();
  if (!open_) Begin(line_, false);
  pass_.last = line_;
  plugin_ = plugin_ || message.unit == kPluginUnit;
  if (traced && traced_ && (frames_.empty() || frames_.back().function != function)) Tangle();
  // Whatever is said in between, even by the libraries that the plug-in calls, may be about what is being done.
  before_ = std::exchange(step_, Step::kNone);
  if (before_ == Step::kNone) steps_.clear();
  bool taken = false;
  const bool known = TellOfDuplicates(message, &taken);
  if (!taken && !TellOfPackage(message) && !TellOfCaches(message) && IsError(message)) Add(What::kError, message);
  return known;
}

bool PassReader::TellOfDuplicates(const LogMessage& message, bool* taken) {
  std::string_view text = message.text;
  *taken = true;
  if (TakePrefix(text, LOG_TEXT_COMPARED)) {
    debug_ = true;
    comparisons_.push_back({std::string(text), line_});
    if (comparisons_.size() > kComparisonsKept) comparisons_.pop_front();
  } else if (text == LOG_TEXT_DUPLICATE_FOUND) {
    step_ = Step::kFound;
    ++reports_;
    search_line_ = 0;
    steps_ = {line_};
  } else if (TakePrefix(text, LOG_TEXT_ORIGIN)) {
    if (before_ == Step::kFound) step_ = Step::kOrigin;
    if (reports_ == 0) ++reports_;
    origin_ = text;
    search_line_ = 0;
    steps_.push_back(line_);
  } else if (HasPrefix(text, LOG_TEXT_DUPLICATED)) {
    return AddDuplicate(message);
  } else if (text == LOG_TEXT_READ_WRITE) {
    TellOfStaying(message);
  } else if (HasPrefix(text, LOG_TEXT_REMOVE_FAILED)) {
    TellOfFailedRemoval(message);
  } else if (HasPrefix(text, LOG_TEXT_DPC)) {
    AddExempt(message);
  } else {
    *taken = false;
  }
  return true;
}

void PassReader::TellOfStaying(const LogMessage& message) {
  if (before_ == Step::kRemoving) {
    step_ = Step::kStaying;
    steps_.push_back(line_);
  } else {
    if (!frames_.empty()) Tangle();
    Add(What::kStays, message).text.clear();
  }
}

// There was a line too many: the three that were taken for one report may be of several.
void PassReader::Unpair() {
  for (Finding& finding : pass_.findings) {
    if (finding.what != What::kDuplicate || finding.lines.size() != 3) continue;
    finding.origin.clear();
    finding.lines = {finding.lines.back()};
    finding.sure = 1;
  }
}

// Two lines have to name the same paths, unless the log has no debug messages at all. Then three lines are one report
// if no other one is begun.
bool PassReader::AddDuplicate(const LogMessage& message) {
  search_line_ = 0;
  const std::string dll = message.text.substr(std::string_view(LOG_TEXT_DUPLICATED).size());
  if (!IsDllPath(dll)) return false;
  const auto compared = std::find_if(comparisons_.rbegin(), comparisons_.rend(), [&](const Comparison& comparison) {
    return !OriginOf(comparison.text, dll).empty();
  });
  if (compared == comparisons_.rend() && debug_) return false;
  const bool three = before_ == Step::kOrigin && reports_ == 1 && NameIn(origin_) == NameIn(dll);
  if (reports_ == 0 && !debug_) Unpair();
  if (reports_ > 0) --reports_;
  Finding& duplicate = Add(What::kDuplicate, message);
  duplicate.path = dll;
  duplicate.text.clear();
  if (compared != comparisons_.rend()) {
    duplicate.origin = OriginOf(compared->text, dll);
    duplicate.lines = {compared->line, line_};
  } else if (three) {
    duplicate.origin = origin_;
    duplicate.lines = {steps_.front(), steps_.back(), line_};
  }
  duplicate.sure = duplicate.lines.size();
  duplicate_ = pass_.findings.size() - 1;
  step_ = Step::kNamed;
  steps_.clear();
  return true;
}

void PassReader::AddExempt(const LogMessage& message) {
  if (message.function != kCompare) return;
  const std::string path = message.text.substr(std::string_view(LOG_TEXT_DPC).size());
  for (auto comparison = comparisons_.rbegin(); comparison != comparisons_.rend(); ++comparison) {
    const std::size_t between = comparison->text.find(LOG_TEXT_COMPARED_WITH);
    if (between == std::string::npos) continue;
    const std::string dll = comparison->text.substr(between + std::string_view(LOG_TEXT_COMPARED_WITH).size());
    const std::string origin = OriginOf(comparison->text, dll);
    if (origin.empty() || (path != dll && path != origin)) continue;
    Finding& exempt = Add(What::kExempt, message);
    exempt.path = dll;
    exempt.origin = origin;
    exempt.text.clear();
    exempt.lines = {comparison->line, line_};
    exempt.sure = 2;
    return;
  }
}

void PassReader::TellOfFailedRemoval(const LogMessage& message) {
  if (before_ == Step::kRemoving &&
      HasPrefix(message.text, LOG_TEXT_REMOVE_FAILED + pass_.findings[duplicate_].path + LOG_TEXT_REASON)) {
    step_ = Step::kFailing;
    pass_.findings[duplicate_].text = message.text;
    steps_.push_back(line_);
  } else {
    Add(What::kError, message);
  }
}

bool PassReader::TellOfPackage(const LogMessage& message) {
  std::string_view text = message.text;
  if (text == LOG_TEXT_NOT_INHOUSE) {
    TellOfLeaving(message);
  } else if (text == LOG_TEXT_SAMPLE) {
    step_ = Step::kSample;
    steps_ = {line_};
  } else if (text == LOG_TEXT_NO_MANIFEST) {
    Add(What::kNoManifest, message);
    step_ = Step::kNoManifest;
  } else if (HasPrefix(text, LOG_TEXT_GUIDE)) {
    Add(What::kRefused, message);
  } else if (TakePrefix(text, LOG_TEXT_RUN_ALREADY "(") && HasSuffix(text, ")")) {
    search_line_ = 0;
    Finding& again = Add(What::kRunAlready, message);
    again.path = text.substr(0, text.size() - 1);
  } else {
    return false;
  }
  return true;
}

// The message just before may be the reason. A sample alone is none: after another package it is treated like that.
void PassReader::TellOfLeaving(const LogMessage& message) {
  const bool follows = !frames_.empty();
  if (follows && before_ == Step::kNoManifest) return;
  const bool sample = follows && before_ == Step::kSample;
  Finding& left = Add(sample ? What::kSample : What::kNotDotnet, message);
  if (sample) left.lines = {steps_.front(), line_};
}

}  // namespace orvelbox
