// The words of the story, finding by finding and pass by pass.

#include "orvelbox/history/explain.h"

#include "base/fixed_names.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

constexpr const char* kJson = "/usr/share/dotnet.orvel/framework/Json.dll";
constexpr const char* kDll = "/opt/usr/apps/org.a/bin/Json.dll";
constexpr const char* kOther = "/opt/usr/apps/org.b/bin/Json.dll";
constexpr const char* kCache = "/opt/usr/dotnet/TPA.txt";

Pass WholePass() {
  Pass pass{""};
  pass.hooks = {{"INSTALL", 1}};
  pass.event = "INSTALL";
  pass.package = "org.a";
  pass.first = 1;
  pass.last = 9;
  pass.begun = pass.ended = true;
  return pass;
}

LogFacts FactsOf(const Pass& pass) {
  LogFacts facts;
  facts.passes = {pass};
  facts.of_plugin = true;
  return facts;
}

Lines StoryOf(const LogFacts& facts) { return DescribeStory("a.log", facts); }

std::string HeadlineOf(const Pass& pass) { return StoryOf(FactsOf(pass)).at(0); }

// What a whole pass says of its only finding.
std::string Told(const Finding& finding, const std::string& package = "org.a") {
  Pass pass = WholePass();
  pass.package = package;
  pass.findings = {finding};
  return StoryOf(FactsOf(pass)).at(1);
}

std::string ToldError(const std::string& text) { return Told({What::kError, "", "", text, "", {4}}); }

TEST(StoryWords, a_dll_is_told_with_its_reason) {
  const std::string why = "    kept      bin/Json.dll: the platform has /usr/share/dotnet.orvel/framework/Json.dll";
  EXPECT_EQ(Told({What::kRemoved, kDll, kOther, "", "", {2}}),
            std::string("    removed   bin/Json.dll: it duplicates ") + kOther + " (line 2)");
  EXPECT_EQ(Told({What::kDuplicate, kDll, "", "", "", {2, 3}}),
            "    duplicate bin/Json.dll: a duplicate of what the log does not say (lines 2-3)");
  EXPECT_EQ(Told({What::kStays, kDll, "/opt/usr/apps/org.a/lib/Json.dll", "", "", {2, 4}}),
            "    kept      bin/Json.dll: the package has it already as lib/Json.dll, and that copy lies in the "
            "read-write area (lines 2, 4)");
  EXPECT_EQ(Told({What::kStays, "", "", "", "", {5}}),
            "    kept      a DLL that is not named here: the copy that decides lies in the read-write area (line 5)");
  EXPECT_EQ(Told({What::kRemovalFailed, kDll, kJson, "busy", "", {2, 4, 5, 6, 8}}),
            why + "; but: busy (lines 2, 4-6, 8)");
  EXPECT_EQ(Told({What::kExempt, kDll, kOther, "", "", {2}}, ""),
            std::string("    kept      org.a bin/Json.dll: no duplicate of ") + kOther +
                ", as one of them is for d.pc (line 2)");
}

TEST(StoryWords, what_else_happened_is_told) {
  const std::pair<Finding, const char*> all[] = {
      {{What::kNoDuplicates, "", "", "", "", {2}}, "nothing   was removed: no duplicate was found"},
      {{What::kRefused, "", "", "Duplicated DLL found. Please refer guide : http://g", "", {2}},
       "refused   the package is under debugging, and has duplicates or is not registered, so its install failed; see "
       "http://g"},
      {{What::kNotDotnet, "", "", "", "", {2}},
       "skipped   it was not taken for a package with a \"dotnet-\" application"},
      {{What::kSample, "", "", "", "", {2}},
       "skipped   an application of the package is a sample (its type holds \"apitest\")"},
      {{What::kNoManifest, "", "", "", "", {2}}, "skipped   the package manager gave no manifest"},
      {{What::kRunAlready, "org.b", "", "", "", {2}}, "skipped   org.b was the package of the pass before as well"},
      {{What::kErased, kCache, ":/a.dll", "", "", {2}}, "TPA.txt   - :/a.dll"},
      {{What::kErasing, kCache, ":/a.dll", "", "", {2}},
       "TPA.txt   :/a.dll was to go; the file may still hold it: it was not written after, or was added to"},
      {{What::kWritten, kCache, "", "", "", {2}}, "TPA.txt   written"},
      {{What::kRestarted, "", "", "", "", {2}}, "loader    restarted"},
      {{What::kNotRestarted, "", "", "", "", {2}}, "loader    could not be restarted"},
      {{What::kError, "", "", "no more", "", {2}}, "error     no more"},
  };
  for (const auto& [finding, words] : all) EXPECT_EQ(Told(finding), std::string("    ") + words + " (line 2)");
}

TEST(StoryWords, what_follows_from_an_error_is_told) {
  const std::string gone = "; the cache file is gone, unless removing it failed; it was not written anew";
  const std::pair<std::string, std::string> all[] = {
      {"error access cache path: /c", "; the file is missing or closed to the installer, and stays as it is"},
      {"Fail to write string to file - open error(busy)", gone},
      {"Symbolic link is detected : " + std::string(kCacheDirectory) + "TPA.txt", gone},
      {"Symbolic link is detected : /a.dll", "; a linked DLL is kept"},
      {"remove from cache called for a", "; the package database does not know the package; its entries stay"},
      {"add to cache called for a", "; the package database does not know the package; it gets no entries"},
      {"Error: Failed pkgmgrinfo_appinfo_metadata_filter_add",
       "; the package database does not answer; shared components were not searched for copies"},
      {"package_info_create return error code : 1",
       "; the package counts as not under debugging and without the platform privilege"},
      {"another", ""}};
  for (const auto& [text, consequence] : all) {
    EXPECT_EQ(ToldError(text), "    error     " + text + consequence + " (line 4)");
  }
}

TEST(StoryWords, the_headline_says_what_is_known_of_the_pass) {
  Pass pass = WholePass();
  EXPECT_THAT(StoryOf(FactsOf(pass)), ElementsAre("lines 1-9: INSTALL of org.a", "    nothing   to tell"));
  pass.process = "7";
  pass.package.clear();
  EXPECT_EQ(HeadlineOf(pass), "lines 1-9: INSTALL of a package that is not certain (process 7)");
  pass.process.clear();
  pass.event.clear();
  pass.last = 1;
  EXPECT_EQ(HeadlineOf(pass), "line 1: INSTALL from line 1 on of a package that is not certain");
  pass.tangled = true;
  pass.hooks = {{"UPGRADE", 1}, {"INSTALL", 2}};
  EXPECT_EQ(HeadlineOf(pass),
            "line 1: one pass or more, mixed or not whole: UPGRADE from line 1 on, INSTALL from line 2 on");
  pass.hooks.clear();
  EXPECT_EQ(HeadlineOf(pass), "line 1: one pass or more, mixed or not whole");
  pass.tangled = false;
  EXPECT_EQ(HeadlineOf(pass), "line 1: a pass or more, without begin and end");
}

TEST(StoryWords, ten_hooks_are_named_at_the_most) {
  Pass pass = WholePass();
  pass.tangled = true;
  pass.hooks.assign(10, {"CLEAN", 3});
  EXPECT_THAT(HeadlineOf(pass), testing::EndsWith(", CLEAN from line 3 on"));
  pass.hooks.emplace_back("UNDO", 4);
  EXPECT_THAT(HeadlineOf(pass), testing::EndsWith(", CLEAN from line 3 on, and more"));
}

TEST(StoryWords, what_of_a_pass_is_unknown_is_told) {
  Pass pass = WholePass();
  pass.begun = pass.ended = false;
  EXPECT_THAT(UnknownOf(pass), ElementsAre("what came before: the log begins in the middle of the pass",
                                           "what came after: the log ends within the pass, or the process did"));
  pass.hooks.clear();
  EXPECT_THAT(UnknownOf(pass),
              ElementsAre("which hooks were called: the log has no begin and no end of one (priority D, tag QUARNEL)"));
  pass.tangled = true;
  pass.findings = {{What::kDuplicate, kDll, "", "", "", {2}}};
  const std::string open =
      "whether a duplicate went: it does unless its origin lies in the read-write area or removing it fails, and the "
      "log does not show for sure that neither was so";
  EXPECT_THAT(
      UnknownOf(pass),
      ElementsAre("what belongs to which package, and became of it: these are lines of several processes at once, or "
                  "some are missing; where one broke off, give what follows as a log of its own",
                  open));
  pass.process = "7";
  EXPECT_THAT(UnknownOf(pass), ElementsAre("what became of it: lines of the process are missing or damaged", open));
}

TEST(StoryWords, a_pass_that_broke_off_before_its_install_is_told) {
  Pass pass = WholePass();
  pass.hooks = {{"UPGRADE", 1}};
  pass.event = "UPGRADE";
  EXPECT_THAT(UnknownOf(pass), ElementsAre("why: UPGRADE broke off before INSTALL"));
  pass.event = "REMOVED";
  EXPECT_THAT(UnknownOf(pass), ElementsAre("why: REMOVED broke off before INSTALL"));
  pass.event = "UNDO";
  EXPECT_THAT(UnknownOf(pass), IsEmpty());
  pass.event = "UPGRADE";
  pass.ended = false;
  EXPECT_THAT(UnknownOf(pass), ElementsAre("what came after: the log ends within the pass, or the process did"));
}

TEST(StoryWords, what_of_the_log_is_unknown_is_told) {
  EXPECT_THAT(
      StoryOf({}),
      ElementsAre("unknown   anything at all: a.log holds no line of the plug-in that could be read; give a log as "
                  "plain text, unpacked, with a message a line"));
  LogFacts facts = FactsOf(WholePass());
  EXPECT_THAT(UnknownOf("a.log", facts), IsEmpty());
  facts.passes[0].package.clear();
  facts.of_plugin = false;
  facts.unclear = {3, 4, 6};
  facts.unclear_lines = 3;
  facts.unread_from = 8;
  const std::string unclear = " said: damaged, or without the lines that belong to them";
  EXPECT_THAT(UnknownOf("a.log", facts),
              ElementsAre("packages that are not certain: of most passes no line names the package",
                          "what the plug-in itself said: there is no line of the tag NETCORE_INSTALLER_PLUGIN",
                          "what lines 3-4, 6" + unclear,
                          "what follows from line 8 on: the log holds more than can be told at once; cut it into "
                          "pieces"));
  facts.unclear_lines = 4;
  EXPECT_EQ(UnknownOf("a.log", facts)[2], "what lines 3-4, 6 and more" + unclear);
  facts.passes[0].tangled = true;
  EXPECT_THAT(UnknownOf("a.log", facts), testing::SizeIs(3));
}

TEST(StoryJson, holds_every_fact) {
  Pass pass = WholePass();
  pass.process = "7";
  pass.findings = {{What::kErased, kCache, ":/a.dll", "left out", "noon", {2, 3}},
                   {What::kErasing, "/c", ":/a.dll", "", "", {2}},
                   {What::kRunAlready, "org.b", "", "left out", "", {4}},
                   {What::kRemovalFailed, "/a.dll", "/b.dll", "busy", "", {5}},
                   {What::kRefused, "", "", "guide", "", {6}},
                   {What::kError, "", "", "bad", "", {7}}};
  LogFacts facts = FactsOf(pass);
  facts.lines = 12;
  facts.unclear = {10};
  facts.unclear_lines = 1;
  facts.unread_from = 12;
  const std::string story = StoryJson("a.log", facts);
  EXPECT_THAT(
      story,
      StartsWith(
          R"({"log":"a.log","lines":12,"passes":[{"event":"INSTALL","package":"org.a","process":"7","first":1,"last":9,)"
          R"("begun":true,"ended":true,"mixed":false,"hooks":[{"hook":"INSTALL","line":1}],"findings":[)"
          R"({"what":"erased","path":"/opt/usr/dotnet/TPA.txt","entry":":/a.dll","time":"noon","lines":[2,3]},)"
          R"({"what":"erasing","path":"/c","entry":":/a.dll","lines":[2]},)"
          R"({"what":"run-already","package":"org.b","lines":[4]},)"
          R"({"what":"removal-failed","path":"/a.dll","origin":"/b.dll","text":"busy","lines":[5]},)"
          R"({"what":"refused","text":"guide","lines":[6]},)"
          R"({"what":"error","text":"bad","lines":[7]}],"unknown":[]}],"unclear":1,"unread_from":12,"unknown":["what line 10)"));
}

TEST(StoryJson, names_every_kind_of_finding) {
  const std::pair<What, std::string> all[] = {{What::kRemoved, "removed"},
                                              {What::kStays, "kept"},
                                              {What::kRemovalFailed, "removal-failed"},
                                              {What::kDuplicate, "duplicate"},
                                              {What::kExempt, "exempt"},
                                              {What::kNoDuplicates, "no-duplicates"},
                                              {What::kRefused, "refused"},
                                              {What::kNotDotnet, "left-alone"},
                                              {What::kSample, "sample"},
                                              {What::kNoManifest, "no-manifest"},
                                              {What::kRunAlready, "run-already"},
                                              {What::kErased, "erased"},
                                              {What::kErasing, "erasing"},
                                              {What::kWritten, "written"},
                                              {What::kRestarted, "restarted"},
                                              {What::kNotRestarted, "not-restarted"},
                                              {What::kError, "error"}};
  for (const auto& [what, name] : all) EXPECT_EQ(NameOf(what), name);
}

}  // namespace
}  // namespace orvelbox
