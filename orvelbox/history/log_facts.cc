// Tells the processes of a log apart, where it does, and puts their passes together.
#include "orvelbox/history/log_facts.h"

#include <algorithm>

#include "base/affix.h"
#include "base/log_line.h"
#include "base/log_texts.h"
#include "orvelbox/history/log_lines.h"
#include "orvelbox/history/log_message.h"
#include "orvelbox/history/pass_reader.h"

namespace orvelbox {
namespace {

// A log can be larger than memory: these bound what is kept of it.
constexpr std::size_t kLongestLine = 65536;
constexpr std::size_t kMostWeight = std::size_t{64} << 20;
constexpr std::size_t kMostProcesses = 1000;
constexpr std::size_t kUnclearKept = 20;

// A file that was examined twice is listed once, as it was found last.
void AddDuplicate(const Finding& finding, std::vector<Duplicate>& all) {
  if (finding.path.empty()) return;
  const auto same = [&finding](const Duplicate& other) { return other.duplicated == finding.path; };
  all.erase(std::remove_if(all.begin(), all.end(), same), all.end());
  all.push_back({finding.origin, finding.path, finding.what, finding.time});
}

void Summarize(const Finding& finding, LogSummary& summary) {
  switch (finding.what) {
    case What::kRemoved:
    case What::kStays:
    case What::kRemovalFailed:
    case What::kDuplicate:
      AddDuplicate(finding, summary.duplicates);
      if (!finding.text.empty()) summary.errors.push_back(finding.text);
      break;
    case What::kRefused:
      summary.guide = finding.text;
      break;
    case What::kNotRestarted:
      summary.restart_failed = true;
      break;
    case What::kNotDotnet:
    case What::kSample:
      summary.not_inhouse = true;
      break;
    case What::kNoManifest:
      summary.not_inhouse = true;
      summary.errors.push_back(finding.text);
      break;
    case What::kError:
      summary.errors.push_back(finding.text);
      break;
    default:
      break;
  }
}

}  // namespace

FactReader::FactReader() = default;
FactReader::~FactReader() = default;

void FactReader::Read(std::string_view line, bool whole) {
  ++facts_.lines;
  if (facts_.unread_from != 0) return;
  if (IsDoubled(line)) return;
  const LogMessage message = ReadLogLine(line, whole);
  if (message.kind == LogMessage::Kind::kForeign) {
    continues_ = false;
  } else if (IsDamaged(message)) {
    NoteUnclear();
    for (auto& [process, reader] : open_) reader->Disturb();
  } else if (message.kind == LogMessage::Kind::kOurs || HasPrefix(message.text, LOG_TEXT_DPC)) {
    PassOn(message);
  }
}

// The same line again is one that was logged twice where it tells time and process. Elsewhere two processes may have
// logged the same.
bool FactReader::IsDoubled(std::string_view line) {
  const bool again = records_ && line == before_;
  before_ = line;
  return again;
}

// One message has a line feed, so that on a device its end stands on a line of its own.
bool FactReader::IsDamaged(const LogMessage& message) {
  const bool continues = continues_;
  continues_ = message.kind == LogMessage::Kind::kDamaged && HasPrefix(message.text, LOG_TEXT_DPC);
  records_ = records_ || !message.process.empty();
  if (records_ && message.process.empty()) return true;
  return message.kind == LogMessage::Kind::kDamaged && !continues && !continues_;
}

void FactReader::PassOn(const LogMessage& message) {
  facts_.of_plugin = facts_.of_plugin || message.unit == kPluginUnit;
  auto& reader = open_[message.process];
  const bool first = reader == nullptr;
  if (first) reader = std::make_unique<PassReader>(message.process);
  const std::size_t weight = reader->weight();
  if (!reader->Read(facts_.lines, message)) NoteUnclear();
  weight_ += reader->weight() - weight;
  // A process that begins in the middle of something may be another one, its number damaged.
  if (first && !reader->begun()) {
    for (auto& [process, other] : open_) {
      if (other != reader) other->Tangle();
    }
  }
  Keep(*reader);
  MakeRoom();
}

void FactReader::Keep(PassReader& reader) {
  for (Pass& pass : reader.TakeOver()) {
    const bool mixed = pass.reaches_back && !facts_.passes.empty();
    if (mixed) LeaveOpen(pass);
    for (; mixed && left_open_ < facts_.passes.size(); ++left_open_) LeaveOpen(facts_.passes[left_open_]);
    facts_.passes.push_back(std::move(pass));
  }
}

// The process that has been silent for the longest is the likeliest to be over.
void FactReader::MakeRoom() {
  if (open_.size() > kMostProcesses) {
    const auto silent = std::min_element(open_.begin(), open_.end(), [](const auto& one, const auto& other) {
      return one.second->last() < other.second->last();
    });
    silent->second->End();
    Keep(*silent->second);
    open_.erase(silent);
  }
  if (weight_ > kMostWeight) facts_.unread_from = facts_.lines + 1;
}

void FactReader::NoteUnclear() {
  if (++facts_.unclear_lines <= kUnclearKept) facts_.unclear.push_back(facts_.lines);
}

LogFacts FactReader::Take() {
  for (auto& [process, reader] : open_) {
    reader->End();
    Keep(*reader);
  }
  open_.clear();
  std::stable_sort(facts_.passes.begin(), facts_.passes.end(),
                   [](const Pass& one, const Pass& other) { return one.first < other.first; });
  return std::move(facts_);
}

LogFacts ReadLogFacts(const std::filesystem::path& file, std::uintmax_t from) {
  LogLines lines(file, from, kLongestLine);
  FactReader reader;
  while (const auto line = lines.Next()) reader.Read(line->text, line->whole);
  if (const auto line = lines.Last()) reader.Read(line->text, line->whole);
  return reader.Take();
}

LogSummary Summarize(const LogFacts& facts) {
  LogSummary summary;
  summary.unread_from = facts.unread_from;
  for (const Pass& pass : facts.passes) {
    for (const Finding& finding : pass.findings) Summarize(finding, summary);
  }
  return summary;
}

}  // namespace orvelbox
