// The launcher tools' helpers for assembly files.
#include "morvath/assembly_files.h"

#include <gtest/gtest.h>
#include <sys/auxv.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <new>
#include <string>
#include <vector>

#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/unit_case.h"
#include "tests/unit/allocation_limit.h"
#include "tests/unit/interposed_files.h"

namespace {

namespace fs = std::filesystem;

using doubles::Call;
using doubles::Platform;
using doubles::Source;
using doubles::Steps;
using support::TempDir;

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

Steps TraceLine(const std::string& message) {
  return {{"TRACE " + message, [=](const doubles::Event& event) {
             const doubles::LogLine& line = event.log;
             return event.kind == doubles::Event::Kind::kLog && line.log_id == 0 && line.priority == 3 &&
                    line.tag == "QUARNEL" && line.line > 0 && line.format == "%s: %s(%d) > \033[90m%s\033[0m\n" &&
                    line.text == "platform_utils: printAll(" + std::to_string(line.line) + ") > \033[90m" + message +
                                     "\033[0m\n";
           }}};
}

TEST(PrintAll, every_entry_is_a_grey_line_of_its_own_in_order_and_as_it_stands) {
  const Platform& platform = doubles::Reset();
  printAll("/b:a:a:/b:%s%n: x ");
  EXPECT_TRUE(Holds(platform, {TraceLine("/b"), TraceLine("a"), TraceLine("a"), TraceLine("/b"), TraceLine("%s%n"),
                               TraceLine(" x ")}));
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

// The running program.

class SelfPath : public testing::Test {
 protected:
  SelfPath() { interposed::Files() = {}; }
  ~SelfPath() override { interposed::Files() = {}; }

  static std::string PathOver(const std::string& target) {
    interposed::Files().self_target = target;
    return readSelfPath();
  }
};

TEST_F(SelfPath, it_is_the_absolute_path_of_the_running_program) {
  const std::string path = readSelfPath();
  EXPECT_EQ('/', path.front());
  // Not by /proc/self/exe, which is the tool's own under memcheck.
  const auto* executed = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  EXPECT_TRUE(fs::equivalent(path, executed)) << path << " for " << executed;
  EXPECT_EQ(fs::path("unit_tests"), fs::path(path).filename());
}

TEST_F(SelfPath, a_link_that_cannot_be_read_gives_nothing) {
  interposed::Files().self_path_error = EACCES;
  EXPECT_EQ("", readSelfPath());
}

TEST_F(SelfPath, the_text_ends_where_the_target_ends) {
  for (const char* target : {"/usr/bin/a", "/a", "/usr/bin/program (deleted)", ""}) {
    EXPECT_EQ(target, PathOver(target));
  }
}

TEST_F(SelfPath, a_target_is_cut_after_4095_bytes) {
  for (const std::size_t size : {std::size_t{4094}, std::size_t{4095}}) {
    EXPECT_EQ(std::string(size, 'x'), PathOver(std::string(size, 'x')));
  }
  for (const std::size_t size : {std::size_t{4096}, std::size_t{4097}, std::size_t{10000}}) {
    EXPECT_EQ(std::string(4095, 'x'), PathOver(std::string(size, 'x')));
  }
}

TEST_F(SelfPath, the_text_ends_at_a_nul_inside_the_target) {
  EXPECT_EQ("/usr/bin/a", PathOver(std::string("/usr/bin/a\0b", 12)));
  EXPECT_EQ("", PathOver(std::string("\0/a", 3)));
}

// Sizes.

TEST(FileSize, it_is_the_files_size_in_bytes_also_behind_a_link) {
  const Platform& platform = doubles::Reset();
  const TempDir directory;
  support::WriteFile(directory / "file", std::string("1\0\n45", 5));
  fs::create_symlink("file", directory / "a link with a long name");
  EXPECT_EQ(5u, getFileSize(directory / "file"));
  EXPECT_EQ(5u, getFileSize(directory / "a link with a long name"));
  EXPECT_TRUE(platform.journal.empty());
}

TEST(FileSize, an_empty_file_and_one_that_is_not_there_are_alike) {
  const TempDir directory;
  support::WriteFile(directory / "empty");
  fs::create_symlink("nowhere", directory / "dangling");
  EXPECT_EQ(0u, getFileSize(directory / "empty"));
  EXPECT_EQ(0u, getFileSize(directory / "missing"));
  EXPECT_EQ(0u, getFileSize(directory / "dangling"));
  EXPECT_EQ(0u, getFileSize(directory / "empty/below"));
  EXPECT_EQ(0u, getFileSize(""));
}

TEST(FileSize, a_size_beyond_32_bits_is_told_whole) {
  const TempDir directory;
  support::WriteFile(directory / "sparse");
  for (const std::uintmax_t size :
       {std::uintmax_t{1} << 31, (std::uintmax_t{1} << 32) + 1, std::uintmax_t{5'000'000'000}}) {
    fs::resize_file(directory / "sparse", size);
    EXPECT_EQ(size, getFileSize(directory / "sparse"));
  }
}

// Digits.

// What stands in a buffer of '?' afterwards, up to where it is untouched.
std::string Written(int value) {
  char buffer[16];
  std::memset(buffer, '?', sizeof buffer);
  itoaForSignalHandler(value, buffer);
  std::size_t size = sizeof buffer;
  while (size > 0 && buffer[size - 1] == '?') --size;
  return {buffer, size};
}

std::string WithNul(const std::string& text) { return text + '\0'; }

TEST(SignalSafeDigits, the_digits_stand_in_order_with_a_nul_behind_and_nothing_else_is_touched) {
  for (const int value : {1, 7, 9, 10, 11, 42, 99, 100, 101, 999, 1000, 65536, 1234567890, 1000000000, INT_MAX}) {
    EXPECT_EQ(WithNul(std::to_string(value)), Written(value));
  }
}

TEST(SignalSafeDigits, zero_gives_no_digit_at_all) { EXPECT_EQ(WithNul(""), Written(0)); }

TEST(SignalSafeDigits, a_negative_value_gives_no_sign_but_characters_below_the_digit_zero) {
  EXPECT_EQ(WithNul("/"), Written(-1));
  EXPECT_EQ(WithNul(",."), Written(-42));
  EXPECT_EQ(11u, Written(INT_MIN).size());
}

TEST(SignalSafeDigits, nothing_is_allocated) {
  char buffer[16] = "";
  EXPECT_FALSE(RunsOutOfMemoryAfter(0, [&] { itoaForSignalHandler(INT_MAX, buffer); }));
  EXPECT_STREQ("2147483647", buffer);
}

// What can make memory run out does.
TEST(AllocationLimit, the_allocation_after_the_last_one_allowed_throws) {
  const auto allocate_twice = [] {
    ::operator delete(::operator new(1));
    ::operator delete(::operator new(1));
  };
  EXPECT_TRUE(RunsOutOfMemoryAfter(0, allocate_twice));
  EXPECT_TRUE(RunsOutOfMemoryAfter(1, allocate_twice));
  EXPECT_FALSE(RunsOutOfMemoryAfter(2, allocate_twice));
}

TEST(SignalSafeDigits, nothing_is_written_into_a_null_buffer) {
  support::InFreshProcess([] { itoaForSignalHandler(42, nullptr); });
}

}  // namespace
