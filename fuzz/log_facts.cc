// The reader of logs: any text is read, the same way however it comes, and nothing is told that does not stand on the
// lines that are named for it. The first byte says in which pieces the log grows, and whether long lines are cut off;
// the rest is the log.
#include "orvelbox/history/log_facts.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/memory_file.h"
#include "orvelbox/history/explain.h"
#include "orvelbox/history/log_lines.h"
#include "platform/host/log_file.h"

namespace {

using fuzz::Require;
using orvelbox::Finding;
using orvelbox::LineNumber;
using orvelbox::LogFacts;
using orvelbox::Pass;

using Texts = std::vector<std::string>;

constexpr std::size_t kMostUnclear = 20;
const std::set<std::string> kEvents = {"",      "INSTALL",          "UPGRADE", "REMOVED", "UNINSTALL",
                                       "CLEAN", "RECOVERUNINSTALL", "CLEANUP", "UNDO"};

Texts PlainLines(const std::string& log) {
  Texts lines = {""};
  for (const char c : log) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  if (lines.back().empty()) lines.pop_back();
  return lines;
}

// Also without those that only the removal of others makes.
std::string WithoutColours(std::string text) {
  for (std::size_t at = text.find("\x1b["); at != std::string::npos; at = text.find("\x1b[", at)) {
    const std::size_t end = text.find_first_not_of("0123456789;", at + 2);
    if (end != std::string::npos && text[end] == 'm') {
      text.erase(at, end + 1 - at);
      at = 0;
    } else {
      ++at;
    }
  }
  return text;
}

LogFacts FactsOf(const Texts& lines) {
  orvelbox::FactReader reader;
  for (const std::string& line : lines) reader.Read(line);
  return reader.Take();
}

// All that was found, as a text. Line numbers begin behind `before`.
std::string Written(const LogFacts& facts, LineNumber before = 0) {
  std::string text = std::to_string(facts.lines - before) + (facts.of_plugin ? " of the plug-in" : "");
  const auto add = [&](const std::string& part) { text += "|" + part; };
  const auto add_line = [&](LineNumber line) { add(std::to_string(line - before)); };
  add(std::to_string(facts.unread_from) + " " + std::to_string(facts.unclear_lines));
  std::for_each(facts.unclear.begin(), facts.unclear.end(), add_line);
  for (const Pass& pass : facts.passes) {
    add("\n" + pass.process + " " + pass.event + " " + pass.package);
    add({pass.begun ? 'b' : '-', pass.ended ? 'e' : '-', pass.reaches_back ? 'r' : '-', pass.tangled ? 't' : '-'});
    for (const LineNumber line : {pass.first, pass.last}) add_line(line);
    for (const auto& [hook, line] : pass.hooks) {
      add(hook);
      add_line(line);
    }
    for (const Finding& finding : pass.findings) {
      add("\n  " + std::to_string(static_cast<int>(finding.what)) + " " + std::to_string(finding.sure));
      for (const std::string& part : {finding.path, finding.origin, finding.text, finding.time}) add(part);
      std::for_each(finding.lines.begin(), finding.lines.end(), add_line);
    }
  }
  return text;
}

// Holds what was found to the lines of the log.
class Watch {
 public:
  Watch(const Texts& lines, const LogFacts& facts) : facts_(facts) {
    for (const std::string& line : lines) {
      const auto record = host::ParseLogRecord(line);
      lines_.push_back(WithoutColours(record ? record->text : line));
    }
  }

  void Check() const {
    Require(facts_.lines == lines_.size(), "every line is read");
    Require(facts_.unread_from == 0, "a small log is read to its end");
    Require(facts_.unclear.size() == std::min<LineNumber>(facts_.unclear_lines, kMostUnclear) &&
                facts_.unclear_lines <= facts_.lines,
            "the first unclear lines are named");
    RequireOrder(facts_.unclear, 1, facts_.lines);
    std::size_t findings = 0;
    LineNumber before = 1;
    for (const Pass& pass : facts_.passes) {
      Require(before <= pass.first && pass.first <= pass.last && pass.last <= facts_.lines, "passes come in order");
      before = pass.first;
      CheckPass(pass);
      findings += pass.findings.size();
    }
    Require(facts_.passes.size() <= facts_.lines && findings <= facts_.lines, "a line tells one thing");
  }

 private:
  static void RequireOrder(const std::vector<LineNumber>& lines, LineNumber first, LineNumber last) {
    Require(std::is_sorted(lines.begin(), lines.end()), "lines are named in their order");
    Require(lines.empty() || (first <= lines.front() && lines.back() <= last), "lines are named that are there");
  }

  bool Stands(const std::string& text, LineNumber line) const {
    return lines_[line - 1].find(WithoutColours(text)) != std::string::npos;
  }

  bool StandsWithin(const std::string& text, const Pass& pass) const {
    for (LineNumber line = pass.first; line <= pass.last; ++line) {
      if (Stands(text, line)) return true;
    }
    return false;
  }

  void CheckPass(const Pass& pass) const {
    Require(kEvents.count(pass.event) == 1, "an event is one of the package manager's");
    Require(StandsWithin(pass.event, pass) && StandsWithin(pass.package, pass), "a pass's lines name its package");
    LineNumber before = pass.first;
    for (const auto& [hook, line] : pass.hooks) {
      Require(before <= line && line <= pass.last && Stands(hook, line), "a hook is entered on its line");
      before = line;
    }
    for (const Finding& finding : pass.findings) CheckFinding(finding, pass);
  }

  void CheckFinding(const Finding& finding, const Pass& pass) const {
    Require(!finding.lines.empty() && finding.sure > 0, "a finding rests on a line");
    RequireOrder(finding.lines, pass.first, pass.last);
    for (const std::string& text : {finding.path, finding.origin}) {
      const bool stands =
          std::any_of(finding.lines.begin(), finding.lines.end(), [&](LineNumber line) { return Stands(text, line); });
      fuzz::RequireEqual(stands ? text : "", text, "a path stands on the lines that are named for it");
    }
    Require(StandsWithin(finding.text, pass), "what was logged stands in the log");
  }

  Texts lines_;
  const LogFacts& facts_;
};

// Reads a file that grows by `piece` bytes whenever all of it was read.
void CheckLines(const std::string& log, std::size_t piece, std::size_t longest) {
  const fuzz::MemoryFile file;
  orvelbox::LogLines reader(file.Path(), 0, longest);
  std::vector<orvelbox::LogLines::Line> read;
  for (std::size_t at = 0; at < log.size(); at += piece) {
    file.Append(log.substr(at, piece));
    while (auto line = reader.Next()) read.push_back(std::move(*line));
  }
  if (auto line = reader.Last()) read.push_back(std::move(*line));
  const Texts lines = PlainLines(log);
  Require(read.size() == lines.size(), "every line comes once");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    fuzz::RequireEqual(lines[i].substr(0, longest), read[i].text, "a line comes up to the greatest length");
    Require(read[i].whole == (lines[i].size() <= longest), "a line that is cut off says so");
  }
}

void CheckSummary(const LogFacts& facts) {
  std::set<std::string> dlls;
  for (const orvelbox::Duplicate& duplicate : Summarize(facts).duplicates) {
    Require(dlls.insert(duplicate.duplicated).second, "a file is told of once");
  }
}

void CheckStory(const LogFacts& facts) {
  Require(!orvelbox::DescribeStory("log", facts).empty(), "there is a story");
  Require(nlohmann::json::accept(orvelbox::StoryJson("log", facts)), "the story is JSON");
}

void CheckFile(const std::string& log, const LogFacts& facts) {
  const fuzz::MemoryFile file;
  file.Append("kernel: up\n" + log);
  const LogFacts read = orvelbox::ReadLogFacts(file.Path());
  fuzz::RequireEqual(Written(facts), Written(read, 1), "a file with a stranger's first line tells the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::size_t choice = input.Byte();
  const std::size_t piece = 16 + choice;
  const std::string log = input.Rest();
  CheckLines(log, piece, choice % 2 == 0 ? std::string::npos : piece / 2);
  const Texts lines = PlainLines(log);
  const LogFacts facts = FactsOf(lines);
  Watch(lines, facts).Check();
  CheckSummary(facts);
  CheckStory(facts);
  CheckFile(log, facts);
  return 0;
}
