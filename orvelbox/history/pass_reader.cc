// Passes, and the frames of their functions.
#include "orvelbox/history/pass_reader.h"

#include <algorithm>
#include <utility>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "base/log_texts.h"
#include "orvelbox/history/log_calls.h"
#include "platform/host/paths.h"

namespace orvelbox {
namespace {

constexpr std::size_t kMostFrames = 64;
constexpr std::size_t kWeightOfPass = 500;

// The package id in a message about a package without a root. Empty when it is none.
std::string PackageWithoutRoot(std::string_view text) {
  for (const std::string_view begin : {LOG_TEXT_REMOVE_CALLED, LOG_TEXT_ADD_CALLED}) {
    if (!HasPrefix(text, begin) || !HasSuffix(text, LOG_TEXT_WITHOUT_ROOT)) continue;
    text.remove_prefix(begin.size());
    return std::string(text.substr(0, text.size() - std::string_view(LOG_TEXT_WITHOUT_ROOT).size()));
  }
  return "";
}

std::string PackageOf(const Finding& finding) {
  if (finding.what == What::kRunAlready) return finding.path;
  if (finding.what == What::kError) return PackageWithoutRoot(finding.text);
  if (!IsAssemblyName(finding.path)) return "";
  const std::string root = PackageRootIn(finding.path);
  return root.substr(root.rfind('/') + 1);
}

bool HangsOnOrder(const Finding& finding) {
  return finding.what == What::kNoDuplicates || finding.what == What::kWritten || finding.what == What::kRestarted;
}

}  // namespace

void LeaveOpen(Pass& pass) {
  pass.tangled = true;
  pass.event.clear();
  pass.package.clear();
  auto& all = pass.findings;
  all.erase(std::remove_if(all.begin(), all.end(), HangsOnOrder), all.end());
  for (Finding& finding : all) {
    if (finding.what == What::kSample) {
      finding.what = What::kNotDotnet;
      finding.lines = {finding.lines.back()};
    }
    if (finding.what == What::kErased) finding.what = What::kErasing;
    finding.lines.resize(std::min(finding.lines.size(), finding.sure));
    const bool removal = finding.what == What::kRemoved || finding.what == What::kRemovalFailed;
    if (removal || (finding.what == What::kStays && !finding.path.empty())) finding.what = What::kDuplicate;
  }
}

bool PassReader::Read(LineNumber line, const LogMessage& message) {
  line_ = line;
  const std::string_view text = message.text;
  const bool entry = HasPrefix(text, LOG_TEXT_ENTRY);
  const std::string_view mark = entry ? LOG_TEXT_ENTRY : LOG_TEXT_EXIT;
  if (!HasPrefix(text, mark)) return Tell(message);
  const std::string function = FunctionIn(text.substr(mark.size()));
  if (function.empty()) {
    // After a search, another privilege is asked for only when it did not find nothing.
    if (step_ == Step::kSearched) step_ = Step::kNone;
    return true;
  }
  debug_ = traced_ = true;
  // Where the begin of a hook is not in the log, those of the hooks that called it are not either.
  const bool ends_outer = !entry && !pass_.begun;
  if (open_ && pass_.ended && !ends_outer) Close();
  before_ = std::exchange(step_, Step::kNone);
  if (before_ == Step::kNone) steps_.clear();
  if (entry) {
    Enter(function);
  } else {
    Exit(function);
  }
  pass_.last = line_;
  return true;
}

void PassReader::Disturb() {
  step_ = Step::kNone;
  search_line_ = 0;
}

void PassReader::Tangle() { pass_.tangled = pass_.tangled || open_; }

void PassReader::End() {
  if (open_) Close();
}

std::vector<Pass> PassReader::TakeOver() { return std::exchange(over_, {}); }

bool PassReader::IsEventOpen() const {
  return std::any_of(frames_.begin(), frames_.end(), [](const Frame& frame) { return IsEvent(frame.function); });
}

void PassReader::Begin(LineNumber line, bool begun) {
  pass_ = Pass{process_};
  pass_.first = pass_.last = line;
  pass_.begun = begun;
  pass_.reaches_back = !begun && process_.empty();
  plugin_ = false;
  reports_ = 0;
  open_ = true;
  weight_ += kWeightOfPass;
}

// A pass is about one package. Where no hook was entered, it may be several.
void PassReader::NamePackage() {
  if (pass_.hooks.empty()) return;
  for (const Finding& finding : pass_.findings) {
    const std::string package = PackageOf(finding);
    if (package.empty()) continue;
    if (!pass_.package.empty() && pass_.package != package) return Tangle();
    pass_.package = package;
  }
}

void PassReader::Close() {
  NamePackage();
  if (pass_.tangled) LeaveOpen(pass_);
  over_.push_back(std::exchange(pass_, {}));
  frames_.clear();
  comparisons_.clear();
  search_line_ = 0;
  open_ = false;
}

void PassReader::Enter(const std::string& function) {
  if (IsEvent(function)) {
    EnterEvent(function);
  } else {
    if (!open_) Begin(line_, false);
    const bool known = !frames_.empty() && MayCall(frames_.back().function, function);
    if (IsTraced(function) && !known) Tangle();
  }
  const bool once = IsEvent(function) || function == kPass;
  if (once && !frames_.empty()) {
    if (frames_.back().has_called) Tangle();
    frames_.back().has_called = true;
  }
  frames_.push_back({function});
  if (frames_.size() > kMostFrames) {
    Tangle();
    frames_.erase(frames_.begin());
  }
  StepInto(function);
}

// A process that begins anew has left the pass before it; where it may be another, the lines of both are mixed from
// here.
void PassReader::EnterEvent(const std::string& event) {
  const bool fits = !frames_.empty() && !frames_.back().has_called && MayCall(frames_.back().function, event);
  if (open_ && !fits) {
    if (process_.empty()) {
      Tangle();
    } else {
      Close();
    }
  }
  if (!open_) Begin(line_, true);
  pass_.hooks.emplace_back(event, line_);
  weight_ += kWeightOfPass;
}

void PassReader::Exit(const std::string& function) {
  if (!open_) Begin(line_, false);
  StepOut(function);
  Pop(function);
  if (!IsEvent(function) || IsEventOpen()) return;
  pass_.ended = true;
  pass_.event = function;
  frames_.clear();
}

void PassReader::Pop(const std::string& function) {
  const auto same = [&function](const Frame& frame) { return frame.function == function; };
  const auto found = std::find_if(frames_.rbegin(), frames_.rend(), same);
  if (frames_.empty() || found != frames_.rbegin()) Tangle();
  if (found != frames_.rend()) {
    frames_.erase(std::next(found).base());
  } else {
    pass_.reaches_back = process_.empty();
  }
}

void PassReader::StepInto(const std::string& function) {
  if (function == kPrivilege) search_line_ = line_;
  if (function == kRestart) step_ = Step::kRestarting;
  if (function == kRemove && before_ == Step::kCompared) step_ = Step::kRemoving;
  steps_.push_back(line_);
  // Nothing but a comparison leads to a removal.
  if (function == kRemove && step_ == Step::kNone) Tangle();
}

void PassReader::StepOut(const std::string& function) {
  steps_.push_back(line_);
  if (function == kCompare && before_ == Step::kNamed) step_ = Step::kCompared;
  if (function == kRemove && before_ == Step::kRemoving) EndDuplicate(What::kRemoved);
  if (function == kRemove && before_ == Step::kStaying) EndDuplicate(What::kStays);
  if (function == kRemove && before_ == Step::kFailing) EndDuplicate(What::kRemovalFailed);
  // A log without the plug-in's own messages has none about a failure either.
  if (function == kRestart && before_ == Step::kRestarting && plugin_) Add(What::kRestarted, {}).lines = steps_;
  if (function == kPass && search_line_ != 0) step_ = Step::kSearched;
  if (function == "INSTALL" && before_ == Step::kSearched) {
    Add(What::kNoDuplicates, {}).lines = {search_line_, steps_.front(), line_};
  }
}

// One line tells whether a duplicate stays because its origin lies in the read-write area. Only for the platform's own
// assemblies its absence is believed: they never lie there.
void PassReader::EndDuplicate(What what) {
  Finding& duplicate = pass_.findings[duplicate_];
  const bool doubtful = what == What::kRemoved && !host::IsBelow(duplicate.origin, kPlatformAssemblies);
  duplicate.what = doubtful ? What::kDuplicate : what;
  duplicate.lines.insert(duplicate.lines.end(), steps_.begin(), steps_.end());
}

}  // namespace orvelbox
