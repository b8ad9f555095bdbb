// The launcher tools' helpers for assembly files.
#include "morvath/assembly_files.h"

#include "tests/support/unit_case.h"
#include "tests/unit/allocation_limit.h"

namespace unit {
namespace {

using TextRows = std::vector<std::pair<std::string, std::string>>;

// Names.

void ExpectStripped(const TextRows& rows) {
  const Platform& platform = doubles::Reset();
  for (const auto& [name, stripped] : rows) EXPECT_EQ(stripped, stripNiDLL(name)) << name;
  EXPECT_TRUE(platform.journal.empty());
}

TEST(StripNiDll, the_extension_goes_and_then_the_native_image_mark) {
  ExpectStripped({{"Foo.ni.dll", "Foo"},
                  {"Foo.NI.DLL", "Foo"},
                  {"Foo.ni.exe", "Foo"},
                  {"Foo.dll", "Foo"},
                  {"Foo.exe", "Foo"},
                  {"Foo.ni", "Foo"},
                  {"System.Private.CoreLib.ni.dll", "System.Private.CoreLib"},
                  {"/opt/pkg.ni/bin/Foo.ni.dll", "/opt/pkg.ni/bin/Foo"},
                  {"a.dll", "a"},
                  {"a.exe", "a"},
                  {"ab.ni", "ab"}});
}

TEST(StripNiDll, letter_case_does_not_matter) {
  ExpectStripped({{"Foo.Dll", "Foo"},
                  {"Foo.dLL", "Foo"},
                  {"Foo.EXE", "Foo"},
                  {"Foo.eXe", "Foo"},
                  {"Foo.Ni", "Foo"},
                  {"Foo.nI.ExE", "Foo"}});
}

TEST(StripNiDll, a_name_of_four_characters_or_fewer_stays_as_it_is) {
  for (const char* name : {"", "a", ".ni", ".dll", ".exe", ".NI", "a.ni", "A.NI", "dll", "x.ni"}) {
    ExpectStripped({{name, name}});
  }
}

TEST(StripNiDll, a_name_of_five_characters_is_stripped) {
  ExpectStripped({{"x.dll", "x"}, {"x.exe", "x"}, {"ni.ni", "ni"}, {"..dll", "."}});
}

TEST(StripNiDll, a_stem_shorter_than_the_mark_stays_and_one_of_nothing_else_goes) {
  ExpectStripped({{"i.dll", "i"}, {"ni.dll", "ni"}, {".ni.dll", ""}, {".ni.exe", ""}, {"n.dll", "n"}});
}

TEST(StripNiDll, one_extension_goes_and_one_mark) {
  ExpectStripped({{"x.dll.exe", "x.dll"},
                  {"x.exe.dll", "x.exe"},
                  {"x.dll.dll", "x.dll"},
                  {"x.exe.exe", "x.exe"},
                  {"x.ni.ni.dll", "x.ni"},
                  {"x.ni.ni", "x.ni"},
                  {"x.ni.dll.ni", "x.ni.dll"},
                  {"x.dll.ni", "x.dll"}});
}

TEST(StripNiDll, anything_else_is_left_whole) {
  for (const char* name : {"Foo.ni.so", "Foo.dll.config", "Foodll", "Fooexe", "Fooni", "Foo.nidll", "Foo.dll ",
                           "Foo.dl", "Foo.ni.", "Foo.n", "Foo.pdb", "Foo,dll"}) {
    ExpectStripped({{name, name}});
  }
}

// Path lists.

TEST(PlatformAssemblies, entries_are_appended_in_order_made_absolute_and_kept_twice) {
  const Platform& platform = doubles::Reset();
  const std::string here = fs::current_path().string();
  std::vector<std::string> paths = {"kept", "kept too"};
  addPlatformAssembliesPaths("/b:a:/b:/b:lib/c:/a/../d", paths);
  EXPECT_EQ((std::vector<std::string>{"kept", "kept too", "/b", here + "/a", "/b", "/b", here + "/lib/c", "/a/../d"}),
            paths);
  addPlatformAssembliesPaths("/e", paths);
  EXPECT_EQ("/e", paths.back());
  EXPECT_EQ(9u, paths.size());
  EXPECT_TRUE(platform.journal.empty());
}

TEST(PlatformAssemblies, a_list_without_entries_adds_nothing) {
  for (const char* list : {"", ":", ":::"}) {
    std::vector<std::string> paths = {"kept"};
    addPlatformAssembliesPaths(list, paths);
    EXPECT_EQ(std::vector<std::string>{"kept"}, paths);
  }
}

TEST(PlatformAssemblies, wherever_memory_runs_out_the_callers_list_is_as_it_was) {
  const std::string list = "/an/entry/too/long/to/fit/into/a/string/itself:another/of/the/same/kind:/third";
  const std::vector<std::string> before = {"kept"};
  std::vector<std::string> paths;
  int count = 0;
  do {
    paths = before;
    paths.shrink_to_fit();
  } while (RunsOutOfMemoryAfter(count++, [&] { addPlatformAssembliesPaths(list, paths); }) && paths == before);
  EXPECT_GT(count, 3);
  EXPECT_EQ(4u, paths.size()) << "after " << count - 1 << " allocations";
}

TEST(PrintAll, every_entry_is_a_grey_line_of_its_own_in_order_and_as_it_stands) {
  const Platform& platform = doubles::Reset();
  printAll("/b:a:a:/b:%s%n: x ");
  const Source source("platform_utils", "printAll");
  EXPECT_TRUE(Holds(platform, {source.Trace("%s", "/b"), source.Trace("%s", "a"), source.Trace("%s", "a"),
                               source.Trace("%s", "/b"), source.Trace("%s", "%s%n"), source.Trace("%s", " x ")}));
}

TEST(PrintAll, a_list_without_entries_logs_nothing) {
  const Platform& platform = doubles::Reset();
  for (const char* list : {"", ":", "::"}) printAll(list);
  EXPECT_TRUE(platform.journal.empty());
}

// Cache texts.

TEST(Crashed, a_cache_text_needs_both_markers_exactly_at_its_ends) {
  const std::pair<const char*, bool> rows[] = {{"", true},
                                               {"[START][END]", false},
                                               {"[START]/a.dll:/b.dll[END]", false},
                                               {"[START]:/a.dll[END]", false},
                                               {"[START]", true},
                                               {"[END]", true},
                                               {"[END][START]", true},
                                               {"[START]/a.dll", true},
                                               {"/a.dll[END]", true},
                                               {"[START][END]\n", true},
                                               {"[START][END] ", true},
                                               {" [START][END]", true},
                                               {"\n[START][END]", true},
                                               {"[start][END]", true},
                                               {"[START][end]", true},
                                               {"[START[END]", true},
                                               {"START][END]", true},
                                               {"[START]END]", true},
                                               {"[START][END", true},
                                               {"x[START]x[END]", true},
                                               {"[START]x[END]x", true},
                                               {"[START]a[START]b[END]c[END]", false}};
  const Platform& platform = doubles::Reset();
  for (const auto& [content, crashed] : rows) EXPECT_EQ(crashed, isCrashed(content)) << content;
  EXPECT_TRUE(isCrashed(std::string("[START][END]\0", 13)));
  EXPECT_TRUE(platform.journal.empty());
}

// Labels.

TEST(SetLabel, a_label_that_is_set_is_not_logged) {
  Platform& platform = doubles::Reset();
  EXPECT_TRUE(setSmack("/pkg/a.dll", "User::Home"));
  EXPECT_TRUE(Holds(platform, Call("smack_setlabel(/pkg/a.dll, User::Home)")));
  EXPECT_EQ("User::Home", platform.labels["/pkg/a.dll"]);
}

TEST(SetLabel, only_a_negative_answer_is_a_failure_and_logged_with_its_line_break) {
  for (const int code : {-1, -38}) {
    Platform& platform = doubles::Reset();
    platform.FailNext("smack_setlabel", code);
    EXPECT_FALSE(setSmack("/pkg/a.dll", "User::Home"));
    EXPECT_TRUE(Holds(platform, {Call("smack_setlabel(/pkg/a.dll, User::Home)"),
                                 Source("platform_utils", "setSmack")
                                     .Error("Fail to set smack label\n : %s : %s", "/pkg/a.dll", "User::Home")}));
  }
  Platform& platform = doubles::Reset();
  platform.FailNext("smack_setlabel", 1);
  EXPECT_TRUE(setSmack("/pkg/a.dll", "User::Home"));
  EXPECT_TRUE(Holds(platform, Call("smack_setlabel(/pkg/a.dll, User::Home)")));
}

}  // namespace
}  // namespace unit
