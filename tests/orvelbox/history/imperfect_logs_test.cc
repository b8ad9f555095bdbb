// Logs with damaged, doubled, continued and endless lines, and what is concluded about cache files.

#include "base/fixed_names.h"
#include "tests/orvelbox/frame.h"
#include "tests/orvelbox/history/told_log.h"

namespace orvelbox {
namespace {

using testing::SizeIs;

constexpr const char* kOrigin = "/usr/share/dotnet.orvel/d.pc/A.dll";
constexpr const char* kDll = "/opt/usr/apps/org.a/A.dll";
constexpr const char* kDamaged = "morvath: gac(7";

Lines Joined(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

TEST(ImperfectLogs, a_damaged_line_may_have_been_one_of_a_report) {
  ToldLog begin;
  begin.Say("isDuplicatedDll", "31", "### Duplicated DLL found ###");
  begin.Say("isDuplicatedDll", "31", std::string("Origin : ") + kOrigin);
  ToldLog end;
  end.Say("isDuplicatedDll", "31", std::string("Duplicated : ") + kDll);
  const std::string duplicate = std::string("duplicate ") + kDll + " ";
  EXPECT_THAT(Told(FactsOf(Joined(begin.lines(), end.lines()))), ElementsAre(duplicate + kOrigin));
  const LogFacts damaged = FactsOf(Joined(Joined(begin.lines(), {kDamaged}), end.lines()));
  EXPECT_THAT(Told(damaged), ElementsAre(duplicate));
  EXPECT_THAT(damaged.unclear, ElementsAre(3U));
}

TEST(ImperfectLogs, the_same_line_twice_in_a_row_is_one_where_it_tells_time_and_process) {
  for (const std::string process : {"7", ""}) {
    ToldLog log(process);
    log.Say("f", "31", "bad").Say("f", "31", "bad").Say("f", "31", "worse").Say("f", "31", "bad");
    EXPECT_THAT(Summarize(FactsOf(log.lines())).errors, SizeIs(process.empty() ? 4 : 3));
  }
}

TEST(ImperfectLogs, the_rest_of_a_message_with_a_line_feed_belongs_to_it) {
  const std::string before = "D/NETCORE_INSTALLER_PLUGIN( 7): ";
  const Lines lines = {"morvath: isDuplicatedDll(7) > ### Duplicated Checker ### Origin : " + std::string(kOrigin) +
                           ", Duplicated : " + kDll,
                       before + "morvath: isDuplicatedDll(7) > \x1b[36mIs DPC DLL " + kOrigin, before + "\x1b[0m"};
  LogFacts facts = FactsOf(lines);
  EXPECT_THAT(Told(facts), ElementsAre(std::string("exempt ") + kDll + " " + kOrigin));
  EXPECT_EQ(facts.passes.at(0).last, 2U);
  EXPECT_EQ(facts.unclear_lines, 0U);
  EXPECT_THAT(FactsOf(Joined(lines, {before + "\x1b[0m"})).unclear, ElementsAre(4U));
  EXPECT_THAT(FactsOf(Joined({lines[0], lines[1], "foreign"}, {lines[2]})).unclear, ElementsAre(4U));
}

TEST(ImperfectLogs, a_message_without_time_and_process_is_unclear_among_those_with_them) {
  ToldLog log("7");
  EXPECT_THAT(FactsOf(Joined(log.Say("f", "31", "bad").lines(), {"morvath: f(7) > text"})).unclear, ElementsAre(2U));
}

// The passes when process 8 says `other` while process 7 installs.
std::vector<Pass> PassesWith(const Lines& other) {
  const Lines begin = ToldLog("7").Enter("INSTALL").Say("f", "31", "failed").lines();
  const Lines end = ToldLog("7").Exit("INSTALL").lines();
  return FactsOf(Joined(Joined(begin, other), end)).passes;
}

TEST(ImperfectLogs, a_process_that_begins_in_the_middle_may_be_another_one) {
  const std::vector<Pass> passes = PassesWith(ToldLog("8").Say("f", "31", "bad").Say("f", "31", "worse").lines());
  ASSERT_THAT(passes, SizeIs(2));
  EXPECT_TRUE(passes[0].tangled);
  EXPECT_FALSE(passes[1].tangled);
  EXPECT_THAT(passes[0].findings.at(0).lines, ElementsAre(2U));
  const std::vector<Pass> whole = PassesWith(ToldLog("8").Enter("UNDO").Exit("UNDO").lines());
  ASSERT_THAT(whole, SizeIs(2));
  EXPECT_FALSE(whole[0].tangled || whole[1].tangled);
}

TEST(ImperfectLogs, what_hangs_on_order_is_left_open_in_a_tangled_pass) {
  const std::string tpa = std::string(kCacheDirectory) + "TPA.txt";
  ToldLog log("7");
  log.Enter("CLEAN").Enter("removedPkgFromTPACacheFile").Say("f", "36", "erase: a: from cache file: " + tpa);
  log.Say("f", "0", "Save File : " + tpa).Say("f", "0", "Saved");
  EXPECT_THAT(Told(FactsOf(log.lines())), ElementsAre("erased " + tpa + " a", "written " + tpa + " "));
  const Lines other = ToldLog("8").Say("f", "36", "text").lines();
  EXPECT_THAT(Told(FactsOf(Joined(log.lines(), other))), ElementsAre("erasing " + tpa + " a"));
  ToldLog reports("7");
  reports.Say("f", "31", "### Duplicated DLL found ###").Say("f", "31", std::string("Origin : ") + kOrigin);
  reports.Say("f", "31", std::string("Duplicated : ") + kDll).Say("f", "31", "Duplicated : /a/B.dll");
  const LogFacts facts = FactsOf(Joined(reports.lines(), other));
  EXPECT_TRUE(facts.passes.at(0).tangled);
  ASSERT_THAT(facts.passes[0].findings, SizeIs(2));
  EXPECT_THAT(facts.passes[0].findings[0].lines, ElementsAre(3U));
}

// Is a log read whole of which so much is kept? `hook`: it begins with one, so that this and the pass have their
// weight.
bool IsReadWhole(bool hook, std::size_t weight) {
  constexpr std::size_t kOfCharacter = 3;
  FactReader reader;
  if (hook) reader.Read(ToldLog().Enter("INSTALL").lines()[0]);
  weight -= hook ? 1000 : 500;
  const auto say = [&](std::size_t length) {
    reader.Read("morvath: f(1) > \x1b[31m" + std::string(length, 'x') + "\x1b[0m");
    weight -= sizeof(Finding) + kOfCharacter * length;
  };
  while (weight > 20'000'000) say(5'000'000);
  for (int i = 0; i < 2 && (weight - sizeof(Finding)) % kOfCharacter != 0; ++i) say(0);
  say((weight - sizeof(Finding)) / kOfCharacter);
  EXPECT_EQ(weight, 0U);
  return reader.Take().unread_from == 0;
}

TEST(ImperfectLogs, no_more_is_kept_than_64_mebibytes) {
  constexpr std::size_t kMost = std::size_t{64} << 20;
  EXPECT_TRUE(IsReadWhole(true, kMost));
  EXPECT_FALSE(IsReadWhole(false, kMost + 1));
}

TEST(ImperfectLogs, twenty_unclear_lines_are_listed_and_the_others_counted) {
  const LogFacts facts = FactsOf(Lines(21, kDamaged));
  EXPECT_THAT(facts.unclear, SizeIs(20));
  EXPECT_EQ(facts.unclear.front(), 1U);
  EXPECT_EQ(facts.unclear_lines, 21U);
}

TEST(ImperfectLogs, a_line_longer_than_is_taken_is_damaged) {
  const support::TempDir dir;
  const std::string begin = "morvath: f(7) > \x1b[31m";
  const std::string end = "\x1b[0m";
  const std::string longest = begin + std::string(65536 - begin.size() - end.size(), 'x') + end;
  WriteFile(dir / "log", longest + "\nx" + longest + "\n" + kDamaged);
  const LogFacts facts = ReadLogFacts(dir / "log");
  EXPECT_THAT(Summarize(facts).errors, SizeIs(1));
  EXPECT_THAT(facts.unclear, ElementsAre(2U, 3U));
  EXPECT_EQ(ReadLogFacts(dir / "log", longest.size() + 1).lines, 2U);
}

// What is told about a cache file when an entry went out of `erased`, and `saved` was written within `function`.
Lines ToldOfCache(const std::string& function, const std::string& erased, const std::string& saved) {
  ToldLog log;
  log.Enter("CLEAN").Enter(function).Enter("readCacheAndRemovePkg");
  log.Say("readCacheAndRemovePkg", "36", "erase: :/a.dll: from cache file: " + erased).Exit("readCacheAndRemovePkg");
  log.Say("writeStringToFile", "0", "Save File : " + saved, "platform_utils");
  log.Say("writeStringToFile", "0", "Saved", "platform_utils").Exit(function).Exit("CLEAN");
  return Told(FactsOf(log.lines()));
}

TEST(ImperfectLogs, an_entry_is_gone_from_the_file_that_was_written_without_it) {
  const std::string tpa = std::string(kCacheDirectory) + "TPA.txt";
  const std::string coba = std::string(kCacheDirectory) + "CoBA.txt";
  const std::string take_out = "removedPkgFromTPACacheFile";
  for (const std::string& file : {tpa, coba}) {
    EXPECT_THAT(ToldOfCache(take_out, file, file), ElementsAre("erased " + file + " /a.dll", "written " + file + " "));
  }
  EXPECT_THAT(ToldOfCache(take_out, tpa, coba), ElementsAre("erasing " + tpa + " /a.dll", "written " + coba + " "));
  EXPECT_THAT(ToldOfCache("addPkgToTPACacheFile", tpa, tpa),
              ElementsAre("erasing " + tpa + " /a.dll", "written " + tpa + " "));
  EXPECT_THAT(ToldOfCache(take_out, "/etc/TPA.txt", "/etc/TPA.txt"), IsEmpty());
  EXPECT_THAT(Told(FactsOf(ToldLog().Enter("CLEAN").Say("f", "36", "erase: x").lines())), IsEmpty());
}

}  // namespace
}  // namespace orvelbox
