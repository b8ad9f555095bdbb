// Editing a cache text: what is erased for a package root, byte by byte, and how entries are appended.
#include "plugin/cache_files.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

struct Row {
  const char* what;
  std::string text;
  std::string left;
  Texts erased;
  std::string root = "/r";
};

const Row kErasing[] = {
    {"the only entry", "[START]/r/shared/res/X.dll[END]", "[START][END]", {"/r/shared/res/X.dll"}},
    {"the last entry goes with the separator before it",
     "[START]/a/x.dll:/r/y.dll[END]",
     "[START]/a/x.dll[END]",
     {":/r/y.dll"}},
    {"the first entry goes with the separator behind it",
     "[START]/r/y.dll:/a/x.dll[END]",
     "[START]/a/x.dll[END]",
     {"/r/y.dll:"}},
    {"a middle entry goes with the separator behind it",
     "[START]/a/x:/r/y:/b/z[END]",
     "[START]/a/x:/b/z[END]",
     {"/r/y:"}},
    {"entries spread through the file",
     "[START]/r/1:/a/x:/r/2:/r/3:/b/y:/r/4[END]",
     "[START]/a/x:/b/y[END]",
     {"/r/1:", "/r/2:", "/r/3:", ":/r/4"}},
    {"nothing but entries of the package", "[START]/r/1:/r/2:/r/3[END]", "[START][END]", {"/r/1:", "/r/2:", "/r/3"}},
    {"the same entry twice", "[START]/r/1:/r/1[END]", "[START][END]", {"/r/1:", "/r/1"}},
    {"the entry is the root itself", "[START]/a:/r:/b[END]", "[START]/a:/b[END]", {"/r:"}},
    {"an empty first element", "[START]:/r/x[END]", "[START][END]", {":/r/x"}},
    {"an empty first element before others", "[START]:/r/x:/a/y[END]", "[START]:/a/y[END]", {"/r/x:"}},
    {"empty elements in between", "[START]/a::/r/x::/b[END]", "[START]/a:::/b[END]", {"/r/x:"}},
    {"a root that begins another's",
     "[START]/apps/pkg/x:/apps/pkg2/y:/apps/pk/z[END]",
     "[START]/apps/pk/z[END]",
     {"/apps/pkg/x:", "/apps/pkg2/y:"},
     "/apps/pkg"},
    {"a root in the middle of an entry", "[START]/mnt/r/x:/a/r/y[END]", "[START]/mnt/r/x:/a/r/y[END]", {}},
    {"a root in the middle of an entry and at the front of a later one",
     "[START]/mnt/r/x:/r/y[END]",
     "[START]/mnt/r/x[END]",
     {":/r/y"}},
    {"a root behind a bracket of its own", "[START]/a/[x]/r/y:/b[END]", "[START]/a/[x]/b[END]", {"/r/y:"}},
    {"no entry of the package", "[START]/a/x:/b/y[END]", "[START]/a/x:/b/y[END]", {}},
    {"an empty list", "[START][END]", "[START][END]", {}},
    {"an empty file", "", "", {}},
    {"another letter case", "[START]/R/x[END]", "[START]/R/x[END]", {}},
    {"a root in quotes of a pattern", "[START]/a.b/x:/aXb/y[END]", "[START]/aXb/y[END]", {"/a.b/x:"}, "/a.b"},
    {"a match at the very front does not count", "/r/x:/a[END]", "/r/x:/a[END]", {}},
    {"a match at the very front does not hide later ones", "/r/x:/r/y[END]", "/r/x[END]", {":/r/y"}},
    {"no end marker: the last entry reaches to the end", "[START]/a/x:/r/y", "[START]/a/x", {":/r/y"}},
    {"no end marker and a line feed", "[START]/r/y\n", "[START]", {"/r/y\n"}},
    {"text behind the end marker", "[START]/r/y[END]\n", "[START][END]\n", {"/r/y"}},
    {"the last entry holds a bracket", "[START]/a:/r/y[1].dll[END]", "[START]/a[1].dll[END]", {":/r/y"}},
    {"a separator behind the end marker", "[START]/r/y[END]:z", "[START]z", {"/r/y[END]:"}},
    {"a root with a separator", "[START]/r:x/a.dll[END]", "[START]x/a.dll[END]", {"/r:"}, "/r:x"},
    {"the search goes on one past a match that does not count",
     "[START]x/a]/a]/a:/b[END]",
     "[START]x/a]/b[END]",
     {"/a]/a:"},
     "/a]/a"},
    {"a match that an erasure makes is erased too", "[START]x]x]y:y[END]", "[START][END]", {"x]y:", "x]y"}, "x]y"},
    {"the whole root must match", "[START]/apps/pkg[END]", "[START]/apps/pkg[END]", {}, "/apps/pkg/"},
    {"a root longer than the text",
     "[START]/r[END]",
     "[START]/r[END]",
     {},
     "/r/a/very/long/root/that/is/longer/than/the/text"},
    {"bytes above 127", "[START]/\xC3\xA4/x:/\xC3/y[END]", "[START]/\xC3/y[END]", {"/\xC3\xA4/x:"}, "/\xC3\xA4"},
    {"percent signs", "[START]/%s/%n:/a[END]", "[START]/a[END]", {"/%s/%n:"}, "/%s"},
    {"line feeds inside the list", "[START]/a\n:/r/x:/b[END]", "[START]/a\n:/b[END]", {"/r/x:"}},
};

void ExpectErased(const Row& row, const std::string& file) {
  WriteFile(file, row.text);
  Platform& platform = doubles::Reset();
  std::string text;
  EXPECT_EQ(!row.erased.empty(), readCacheAndRemovePkg(file, row.root, text)) << row.what;
  EXPECT_EQ(row.left, text) << row.what;
  EXPECT_TRUE(Holds(platform, {CacheRead(file, row.erased, row.left)})) << row.what;
  EXPECT_EQ(row.text, ReadFile(file)) << row.what;
}

TEST(CacheText, the_entries_of_a_root_are_erased_and_each_is_told) {
  const TempDir directory;
  for (const Row& row : kErasing) ExpectErased(row, directory / "TPA.txt");
}

TEST(CacheText, many_entries_are_erased) {
  std::string text = "[START]";
  std::vector<std::string> erased;
  for (int i = 0; i < 120; ++i) {
    erased.push_back("/r/" + std::to_string(i) + ".dll:");
    text += erased.back() + (i % 2 == 0 ? "/a/x:" : "");
  }
  std::string left = "[START]";
  for (int i = 0; i < 60; ++i) left += "/a/x:";
  const TempDir directory;
  ExpectErased({"many", text + "/b[END]", left + "/b[END]", erased}, directory / "TPA.txt");
}

// Texts on which erasing would find the same empty entry for ever.
TEST(CacheText, a_text_that_erasing_would_never_get_through_stays_as_it_is) {
  const TempDir directory;
  const std::pair<std::string, std::string> rows[] = {{"[START][END]", ""},
                                                      {"[START]/a:/b[END]", ""},
                                                      {"[START]/a[END]", ""},
                                                      {"[START][END]", "[END]"},
                                                      {"[START][x", "["}};
  for (const auto& [text, root] : rows) ExpectErased({text.c_str(), text, text, {}, root}, directory / "TPA.txt");
}

TEST(CacheText, a_missing_file_leaves_the_callers_text_alone) {
  const TempDir directory;
  Platform& platform = doubles::Reset();
  std::string text = "as it was";
  EXPECT_FALSE(readCacheAndRemovePkg(directory / "missing", "/r", text));
  EXPECT_EQ("as it was", text);
  EXPECT_TRUE(Holds(platform, {CacheMissing(directory / "missing")}));
  EXPECT_FALSE(IsThere(directory / "missing"));
}

TEST(CacheText, an_empty_file_empties_the_callers_text) {
  const TempDir directory;
  WriteFile(directory / "TPA.txt", "");
  Platform& platform = doubles::Reset();
  std::string text = "as it was";
  EXPECT_FALSE(readCacheAndRemovePkg(directory / "TPA.txt", "/r", text));
  EXPECT_EQ("", text);
  EXPECT_TRUE(Holds(platform, {CacheRead(directory / "TPA.txt", {}, "")}));
}

TEST(CacheText, a_file_that_may_not_be_read_is_like_an_empty_one) {
  const TempDir directory;
  WriteFile(directory / "TPA.txt", "[START]/r/x[END]");
  std::filesystem::permissions(directory / "TPA.txt", std::filesystem::perms::none);
  Fresh([&](Platform& platform) {
    ASSERT_TRUE(support::GiveUpPrivileges());
    std::string text = "as it was";
    EXPECT_FALSE(readCacheAndRemovePkg(directory / "TPA.txt", "/r", text));
    EXPECT_EQ("", text);
    EXPECT_TRUE(Holds(platform, {CacheRead(directory / "TPA.txt", {}, "")}));
  });
}

struct AppendRow {
  std::string text;
  std::string entries;
  std::string result;
};

TEST(CacheText, entries_are_put_in_place_of_the_last_five_characters) {
  const AppendRow rows[] = {{"[START][END]", "/r/a", "[START]:/r/a[END]"},
                            {"[START]/a[END]", "/r/a:/r/b", "[START]/a:/r/a:/r/b[END]"},
                            {"[START]/a[END]\n", "/r", "[START]/a[:/r[END]"},
                            {"[START]/a/bcd", "/r", "[START]/:/r[END]"},
                            {"12345", "/r", ":/r[END]"},
                            {"1234", "/r", "1234:/r[END]"},
                            {"1", "/r", "1:/r[END]"}};
  for (const AppendRow& row : rows) EXPECT_EQ(row.result, AppendEntries(row.text, row.entries)) << row.text;
}

}  // namespace
}  // namespace unit
