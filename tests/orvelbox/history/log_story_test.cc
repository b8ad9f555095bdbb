// What is concluded from a log, held against what the whole log says: the logs of all integration cases are cut,
// doubled, mixed and damaged, and put into the forms of other logs.

#include <algorithm>
#include <random>
#include <set>

#include "orvelbox/history/explain.h"
#include "platform/host/log_file.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/command.h"

namespace orvelbox {
namespace {

// A line, and which line of which log it was.
struct TestLine {
  std::string text;
  std::size_t log;
  LineNumber line;
  bool damaged = false;
};
using TestLog = std::vector<TestLine>;
using Claims = std::set<std::string>;

LogFacts FactsOf(const TestLog& log) {
  FactReader reader;
  for (const TestLine& line : log) reader.Read(line.text);
  LogFacts facts = reader.Take();
  EXPECT_FALSE(DescribeStory("LOG", facts).empty());
  EXPECT_FALSE(StoryJson("LOG", facts).empty());
  return facts;
}

bool HangsOnLines(What what) {
  return what == What::kRemoved || what == What::kStays || what == What::kRemovalFailed ||
         what == What::kNoDuplicates || what == What::kWritten || what == What::kRestarted;
}

// A finding in words that stay the same wherever its lines are found; `where` names the last of them.
std::string Claim(What what, const Finding& finding, const std::string& where) {
  const bool staying = what == What::kStays && finding.path.empty();
  return std::string(NameOf(what)) + "|" + finding.path + "|" + finding.origin + "|" +
         (HangsOnLines(what) && !staying ? where : "");
}

std::string Where(const TestLine& line) { return std::to_string(line.log) + ":" + std::to_string(line.line); }

// What a claim may be added to: what it was part of, and of which package.
Claims Additions(const Finding& finding, const Pass& pass, const std::vector<std::string>& events) {
  Claims additions = {""};
  if (!finding.hook.empty()) additions.insert("|in " + finding.hook);
  if (pass.package.empty()) return additions;
  additions.insert("|of " + pass.package);
  for (const std::string& event : events) additions.insert("|" + event + " of " + pass.package);
  return additions;
}

// What may truly be said, by the whole log: what it says, and whatever says less.
void AddTruth(const Finding& finding, const Pass& pass, const TestLog& log, Claims& truth) {
  std::vector<std::string> events;
  for (const auto& [hook, line] : pass.hooks) events.push_back(hook);
  const std::string where = Where(log.at(finding.lines.back() - 1));
  Claims claims = {Claim(finding.what, finding, where)};
  const bool removal = finding.what == What::kRemoved || finding.what == What::kRemovalFailed;
  if (removal || finding.what == What::kStays || finding.what == What::kDuplicate) {
    Finding less = finding;
    claims.insert(Claim(What::kDuplicate, less, ""));
    less.origin.clear();
    claims.insert(Claim(What::kDuplicate, less, ""));
    claims.insert(Claim(finding.what, less, where));
    less.path.clear();
    if (finding.what == What::kStays) claims.insert(Claim(What::kStays, less, ""));
    if (finding.what == What::kRemovalFailed) claims.insert(Claim(What::kError, less, ""));
  }
  for (const std::string& claim : claims) {
    for (const std::string& addition : Additions(finding, pass, events)) truth.insert(claim + addition);
  }
}

Claims TruthOf(const TestLog& log) {
  Claims truth;
  for (const Pass& pass : FactsOf(log).passes) {
    EXPECT_FALSE(pass.tangled) << "of a whole log";
    for (const Finding& finding : pass.findings) AddTruth(finding, pass, log, truth);
  }
  return truth;
}

// Each claim has to be true; one that rests on a line that reads well, but was changed, is the line's own.
void ExpectTrue(const TestLog& log, const Claims& truth, const std::string& how) {
  for (const Pass& pass : FactsOf(log).passes) {
    for (const Finding& finding : pass.findings) {
      const auto changed = [&log](LineNumber line) { return log.at(line - 1).damaged; };
      if (std::any_of(finding.lines.begin(), finding.lines.end(), changed)) continue;
      const std::string claim = Claim(finding.what, finding, Where(log.at(finding.lines.back() - 1)));
      std::vector<std::string> events;
      if (!pass.event.empty()) events.push_back(pass.event);
      for (const std::string& addition : Additions(finding, pass, events)) {
        ASSERT_EQ(truth.count(claim + addition), 1U) << claim + addition << "\n" << how;
      }
    }
  }
}

// The same log in the form of another: with the prefix of a device, without anything but the message, errors only.
std::string WithoutColours(std::string text) {
  for (std::size_t at = 0; (at = text.find("\x1b[")) != std::string::npos;) text.erase(at, text.find('m', at) - at + 1);
  return text;
}

using Form = void (*)(const TestLine& line, const host::LogRecord& record, TestLog& log);

void OfDesk(const TestLine& line, const host::LogRecord& /*record*/, TestLog& log) { log.push_back(line); }

void OfDevice(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  std::string text = record.text;
  for (std::size_t end = 0; end != std::string::npos; text.erase(0, end + 1)) {
    end = text.find('\n');
    log.push_back({"11-22 04:10:00.1 " + std::string(1, record.priority) + "/" + record.tag +
                       "( 7): " + text.substr(0, end) + "\r",
                   line.log, line.line});
    if (end == std::string::npos) break;
  }
}

void Bare(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  const std::string text = WithoutColours(record.text);
  log.push_back({text.substr(0, text.find('\n')), line.log, line.line});
}

void ErrorsOnly(const TestLine& line, const host::LogRecord& record, TestLog& log) {
  if (record.priority == 'E') Bare(line, record, log);
}

constexpr std::pair<const char*, Form> kForms[] = {
    {"desk", OfDesk}, {"device", OfDevice}, {"bare", Bare}, {"errors", ErrorsOnly}};

TestLog In(Form form, const TestLog& log) {
  TestLog other;
  for (const TestLine& line : log) form(line, host::ParseLogRecord(line.text).value(), other);
  return other;
}

TestLog Part(const TestLog& log, std::size_t begin, std::size_t end) {
  return {log.begin() + static_cast<std::ptrdiff_t>(begin), log.begin() + static_cast<std::ptrdiff_t>(end)};
}

TestLog Mixed(const TestLog& one, const TestLog& other, std::mt19937& random) {
  TestLog mixed;
  auto first = one.begin();
  auto second = other.begin();
  while (first != one.end() || second != other.end()) {
    for (std::size_t run = random() % 12; run > 0 && first != one.end(); --run) mixed.push_back(*first++);
    for (std::size_t run = random() % 12; run > 0 && second != other.end(); --run) mixed.push_back(*second++);
  }
  return mixed;
}

// Some of its bytes changed, or its end gone; nothing in front of what makes it ours, without which it is no line of
// ours.
TestLine Damaged(TestLine line, std::mt19937& random) {
  const std::size_t ours = line.text.find(": ") + 2;
  if (line.text.size() <= ours) return line;
  const std::size_t at = ours + random() % (line.text.size() - ours);
  const char bytes[] = {'\0', '\xff', 'x', ' '};
  line.damaged = true;
  if (random() % 3 == 0) {
    line.text.resize(at);
  } else {
    line.text[at] = bytes[random() % sizeof bytes];
  }
  return line;
}

class LogStory : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const support::TempDir directory;
    support::OutputOf("KEPT_LOGS='" + directory.path().string() + "' '" INTEGRATION_TESTS "' 2>&1");
    for (const std::string& name : support::NamesIn(directory.path())) {
      TestLog log;
      for (const std::string& line : support::Lines(ReadFile(directory / name))) {
        log.push_back({line, logs().size(), log.size() + 1});
      }
      logs().push_back(log);
    }
  }
  void SetUp() override {
    if (logs().empty()) GTEST_SKIP() << "no integration case runs here";
    for (const TestLog& log : logs()) truths_.push_back(TruthOf(log));
  }
  static std::vector<TestLog>& logs() {
    static std::vector<TestLog> all;
    return all;
  }

  // Every log in every form.
  template <typename Body>
  void ForEachForm(const Body& body) const {
    for (const auto& [name, form] : kForms) {
      for (std::size_t i = 0; i < logs().size(); ++i) body(In(form, logs()[i]), truths_[i], name);
    }
  }

  std::vector<Claims> truths_;
};

TEST_F(LogStory, whole_logs_tell_all_that_can_become_of_a_dll) {
  Claims told;
  for (const Claims& truth : truths_) {
    for (const std::string& claim : truth) told.insert(claim.substr(0, claim.find('|')));
  }
  for (const What what : {What::kRemoved, What::kStays, What::kExempt, What::kNoDuplicates, What::kRefused,
                          What::kErased, What::kWritten, What::kRestarted, What::kNotRestarted}) {
    EXPECT_THAT(told, Contains(NameOf(what)));
  }
}

TEST_F(LogStory, no_cut_makes_a_false_claim) {
  ForEachForm([](const TestLog& log, const Claims& truth, const std::string& form) {
    ExpectTrue(log, truth, form);
    for (std::size_t at = 0; at < log.size(); ++at) {
      ExpectTrue(Part(log, at, log.size()), truth, form + " from " + std::to_string(at));
      ExpectTrue(Part(log, 0, at), truth, form + " up to " + std::to_string(at));
      ExpectTrue(Part(log, at / 2, at), truth, form + " up to and from " + std::to_string(at));
    }
  });
}

TEST_F(LogStory, no_doubling_makes_a_false_claim) {
  ForEachForm([](const TestLog& log, const Claims& truth, const std::string& form) {
    TestLog lines;
    for (const TestLine& line : log) lines.insert(lines.end(), {line, line});
    ExpectTrue(lines, truth, form + ", each line twice");
    TestLog twice = log;
    twice.insert(twice.end(), log.begin(), log.end());
    ExpectTrue(twice, truth, form + ", the log twice");
  });
}

TEST_F(LogStory, no_damage_makes_a_false_claim) {
  std::mt19937 random(15);
  ForEachForm([&random](const TestLog& log, const Claims& truth, const std::string& form) {
    for (std::size_t at = 0; at < log.size() * 8; ++at) {
      TestLog damaged = log;
      TestLine& line = damaged[at / 8];
      line = Damaged(line, random);
      ExpectTrue(damaged, truth, form + ", line " + std::to_string(at / 8 + 1) + ": " + line.text);
    }
  });
}

TEST_F(LogStory, no_mixture_makes_a_false_claim) {
  std::mt19937 random(15);
  for (const auto& [name, form] : kForms) {
    for (std::size_t i = 0; i < logs().size() * logs().size(); ++i) {
      const std::size_t one = i / logs().size();
      const std::size_t other = i % logs().size();
      if (one == other) continue;
      Claims truth = truths_[one];
      truth.insert(truths_[other].begin(), truths_[other].end());
      const TestLog mixed = Mixed(In(form, logs()[one]), In(form, logs()[other]), random);
      const std::string how = name + (" mixed of " + std::to_string(one)) + " and " + std::to_string(other);
      ExpectTrue(mixed, truth, how);
      for (std::size_t at = random() % 7; at < mixed.size(); at += 7) {
        ExpectTrue(Part(mixed, at, mixed.size()), truth, how + " from " + std::to_string(at));
        ExpectTrue(Part(mixed, 0, at), truth, how + " up to " + std::to_string(at));
      }
    }
  }
}

}  // namespace
}  // namespace orvelbox
