// What is concluded from a log, held against what the whole log says: the logs of all integration cases are cut,
// doubled, mixed and damaged, and put into the forms of other logs.

#include <algorithm>
#include <random>
#include <set>

#include "orvelbox/history/explain.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/kept_devices.h"
#include "tests/orvelbox/history/log_forms.h"

namespace orvelbox {
namespace {

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
         (what == What::kError || what == What::kRefused ? finding.text : "") + "|" +
         (HangsOnLines(what) && !staying ? where : "");
}

std::string Where(const TestLine& line) { return std::to_string(line.log) + ":" + std::to_string(line.line); }

// What a claim may be added to: what it was part of, and of which package.
Claims Additions(const Pass& pass, const std::vector<std::string>& events) {
  Claims additions = {""};
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
  if (finding.what == What::kErased) claims.insert(Claim(What::kErasing, finding, where));
  if (finding.what == What::kSample || finding.what == What::kNoManifest) {
    claims.insert(Claim(What::kNotDotnet, finding, where));
  }
  for (const std::string& claim : claims) {
    for (const std::string& addition : Additions(pass, events)) truth.insert(claim + addition);
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
      for (const std::string& addition : Additions(pass, events)) {
        ASSERT_EQ(truth.count(claim + addition), 1U) << claim + addition << "\n" << how;
      }
    }
  }
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
    const KeptDevices kept;
    for (const host::Device& device : kept.devices()) logs().push_back(ReadTestLog(device.Log(), logs().size()));
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
    for (const auto& [name, form] : LogForms()) {
      for (std::size_t i = 0; i < logs().size(); ++i) body(In(form, logs()[i]), truths_[i], name);
    }
  }

  std::vector<Claims> truths_;
};

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
  for (const auto& [name, form] : LogForms()) {
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
