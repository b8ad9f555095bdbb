// Valid package archives, and the refusal of all others with the name of the entry.
#include <sys/stat.h>

#include "tests/orvelbox/package/archive_frame.h"

namespace orvelbox {
namespace {

TEST(Archive, files_and_directories_come_with_their_contents) {
  EXPECT_THAT(Read(ZipOf({{"bin/", ""}, {"bin/A.dll", std::string("a\0b", 3)}, {"empty", ""}})),
              ElementsAre(Pair("bin/", ""), Pair("bin/A.dll", std::string("a\0b", 3)), Pair("empty", "")));
}

TEST(Archive, superfluous_dots_and_slashes_are_dropped) {
  EXPECT_THAT(Read(ZipOf({{"./", ""}, {"./bin//./A.dll", "a"}})), ElementsAre(Pair("bin/A.dll", "a")));
}

TEST(Archive, paths_written_with_backslashes_only_are_read_as_paths) {
  EXPECT_THAT(Read(ZipOf({{"bin\\A.dll", "a"}})), ElementsAre(Pair("bin/A.dll", "a")));
  EXPECT_THAT(ProblemOf(ZipOf({{"..\\A.dll", "a"}})), HasSubstr("leads out of the package"));
}

TEST(Archive, names_keep_their_bytes_in_any_locale) {
  const std::string name =
      "b\xc3\xbc"
      "cher.dll";
  EXPECT_THAT(Read(ZipOf({{name, "a", 0, 0x800}})), ElementsAre(Pair(name, "a")));
  EXPECT_THAT(Read(ZipOf({{name, "a"}})), ElementsAre(Pair(name, "a")));
}

TEST(Archive, compressed_content_is_unpacked) {
  EXPECT_EQ(Read(support::ZipOfZeros("zeros", 100000)).at("zeros"), std::string(100000, '\0'));
}

struct BadEntry {
  const char* name;
  std::vector<support::ZipEntry> entries;
  std::string complaint;
};

class BadArchive : public testing::TestWithParam<BadEntry> {};

TEST_P(BadArchive, is_refused_and_the_entry_named) {
  EXPECT_EQ(ProblemOf(ZipOf(GetParam().entries)),
            "a.opk: entry \"" + GetParam().entries.back().path + "\"" + GetParam().complaint);
}

constexpr const char* kLeadsOut = " leads out of the package (\"..\"); pack it with plain paths";
constexpr const char* kNoName = " has no name; pack the archive anew";
constexpr const char* kSpecial = " is no file and no directory; take it out of the archive";
constexpr const char* kTwice = " is there twice; pack the archive anew";
constexpr const char* kTwoKinds = " is told to be a file and a directory at once; pack the archive anew";

INSTANTIATE_TEST_SUITE_P(
    entry, BadArchive,
    testing::Values(
        BadEntry{
            "absolute", {{"/etc/passwd", ""}}, " has an absolute path; pack it with paths relative to the package"},
        BadEntry{"leads_out", {{"../x", ""}}, kLeadsOut}, BadEntry{"leads_out_later", {{"bin/../../x", ""}}, kLeadsOut},
        BadEntry{"dot_dot_inside", {{"bin/../x", ""}}, kLeadsOut},
        BadEntry{"dot_dot_directory", {{"bin/../", ""}}, kLeadsOut},
        BadEntry{"backslash", {{"bin/..\\x", ""}}, " holds \"\\\"; pack it with \"/\" between the names"},
        BadEntry{"no_name", {{".", "x"}}, kNoName}, BadEntry{"no_path", {{"", "x"}}, kNoName},
        BadEntry{"long_name",
                 {{std::string(255, 'n'), ""}, {std::string(256, 'n'), ""}},
                 " holds a name of more than 255 bytes; choose a shorter one"},
        BadEntry{"link", {{"l", "/etc/passwd", S_IFLNK | 0777}}, " is a link; pack the file itself in its place"},
        BadEntry{"terminal", {{"t", "", S_IFCHR | 0644}}, kSpecial},
        BadEntry{"device", {{"d", "", S_IFBLK | 0644}}, kSpecial},
        BadEntry{"directory_as_file", {{"d", "", S_IFDIR | 0755}}, kTwoKinds},
        BadEntry{"file_as_directory", {{"f/", "", S_IFREG | 0644}}, kTwoKinds},
        BadEntry{"directory_with_content", {{"full/", "content"}}, kTwoKinds},
        BadEntry{"encrypted", {{"e", std::string(20, 'x'), 0, 1}}, " is encrypted; pack it without a password"},
        BadEntry{"encrypted_strongly", {{"e", "x", 0, 0x40}}, " is encrypted; pack it without a password"},
        BadEntry{"encrypted_directory", {{"e", "x", 0, 0x2000}}, " is encrypted; pack it without a password"},
        BadEntry{"twice", {{"A.dll", "1"}, {"./A.dll", "2"}}, kTwice},
        BadEntry{"file_then_directory", {{"bin", "1"}, {"bin/", ""}}, kTwice},
        BadEntry{"directory_then_file", {{"bin/A.dll", "1"}, {"bin", ""}}, kTwice},
        BadEntry{"below_a_file",
                 {{"a/bin", "1"}, {"a/bin/b/A.dll", ""}},
                 " lies in \"a/bin\", which is a file; pack the archive anew"},
        BadEntry{"damaged",
                 {{"A.dll", "content", 0, 0, 1}},
                 ": no zip archive, cut off or damaged (its checksum is wrong); make it anew, or fetch it again"}),
    [](const auto& parameters) { return parameters.param.name; });

// A file is described twice: in the archive's directory and before its content. Here the header before the content is
// wrong.
struct Contradiction {
  const char* name;
  std::size_t at;  // in the entry's own header
  char byte;
  std::string complaint;
};

class ContradictingArchive : public testing::TestWithParam<Contradiction> {};

TEST_P(ContradictingArchive, is_refused_and_the_entry_named) {
  std::string zip = ZipOf({{"A.dll", "content"}});
  zip[GetParam().at] = GetParam().byte;
  EXPECT_EQ(ProblemOf(zip), "a.opk: entry \"A.dll\": no zip archive, cut off or damaged (its " + GetParam().complaint +
                                "); make it anew, or fetch it again");
}

INSTANTIATE_TEST_SUITE_P(
    header, ContradictingArchive,
    testing::Values(Contradiction{"signature", 0, 'X', "header is not where it should be"},
                    Contradiction{"encrypted", 6, 1, "own header and the directory tell different kinds of content"},
                    Contradiction{"method", 8, 8, "own header and the directory tell different kinds of content"},
                    Contradiction{"checksum", 14, 0, "own header and the directory tell different checksums"},
                    Contradiction{"packed_size", 18, 6, "own header and the directory tell different sizes"},
                    Contradiction{"size", 22, 8, "own header and the directory tell different sizes"},
                    Contradiction{"name", 30, 'B', "own header and the directory tell different names"},
                    Contradiction{"length_of_name", 26, 4, "own header and the directory tell different names"}),
    [](const auto& parameters) { return parameters.param.name; });

TEST(Archive, entries_that_share_bytes_are_refused) {
  std::string zip = ZipOf({{"A.dll", ZipOf({{"B.dll", "b"}})}, {"B.dll", "b"}});
  zip[zip.rfind("PK\x01\x02") + 42] = 30 + 5;  // a header inside the first entry's content
  EXPECT_THAT(ProblemOf(zip), HasSubstr("entry \"A.dll\": no zip archive, cut off or damaged (it reaches into"));
}

TEST(Archive, a_path_with_a_nul_is_refused) {
  EXPECT_EQ(ProblemOf(ZipOf({{std::string("A\0.dll", 6), ""}})),
            "a.opk: entry \"A\" holds a NUL in its path; pack the archive anew");
}

TEST(Archive, numbers_may_be_told_in_64_bits) {
  support::ZipEntry wide{"A.dll", "content"};
  wide.wide = true;
  const std::string zip = ZipOf({wide, {"B.dll", "b"}});
  EXPECT_THAT(Read(zip), ElementsAre(Pair("A.dll", "content"), Pair("B.dll", "b")));
  for (std::size_t length = 0; length < zip.size(); ++length)
    EXPECT_NE(ProblemOf(zip.substr(0, length)), "no error") << length;
  std::string endless = zip;
  endless[endless.find("PK\x01\x02") + 46 + 5 + 4 + 7] = '\x7f';  // the highest byte of the size
  EXPECT_THAT(ProblemOf(endless), HasSubstr("makes the package larger than"));
}

TEST(Archive, headers_far_beyond_the_end_are_refused_by_name) {
  support::ZipEntry wide{"A.dll", "content"};
  wide.wide = true;
  std::string zip = ZipOf({wide});
  for (const char highest : {'\x7f', '\x80'}) {
    zip[zip.find("PK\x01\x02") + 46 + 5 + 4 + 23] = highest;  // byte of the offset
    EXPECT_THAT(ProblemOf(zip), HasSubstr("entry \"A.dll\": no zip archive, cut off or damaged (its own header"));
  }
}

TEST(Archive, entries_with_one_path_count_each) {
  ArchiveLimits limits;
  limits.entries = 3;
  EXPECT_EQ(ProblemOf(ZipOf({{"d/", ""}, {"d/", ""}, {"./", ""}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"d/", ""}, {"d/", ""}, {"./", ""}, {"./", ""}}), limits), HasSubstr("one too many"));
}

TEST(Archive, another_way_of_compressing_is_refused) {
  std::string zip = ZipOf({{"A.dll", "content"}});
  zip[zip.find("PK\x01\x02") + 10] = 12;
  EXPECT_EQ(ProblemOf(zip),
            "a.opk: entry \"A.dll\" is compressed in another way than by deflate; pack it with zip's own settings");
}

TEST(Archive, any_damaged_byte_is_survived) {
  const std::string zip = support::ZipOfZeros("A.dll", 1000);
  for (std::size_t at = 0; at < zip.size(); ++at) {
    for (const char byte : {'\0', '\1', '\x7f', '\xff'}) {
      std::string damaged = zip;
      damaged[at] = byte;
      const std::string problem = ProblemOf(damaged);
      EXPECT_TRUE(problem == "no error" || problem.find("; ") != std::string::npos) << at << ": " << problem;
    }
  }
}

TEST(Archive, a_directory_may_be_told_more_than_once) {
  EXPECT_THAT(Read(ZipOf({{"bin/A.dll", "a"}, {"bin/", ""}, {"bin/", ""}})),
              ElementsAre(Pair("bin/", ""), Pair("bin/A.dll", "a")));
}

TEST(Archive, a_content_that_ends_in_the_middle_is_refused) {
  std::string zip = support::ZipOfZeros("A.dll", 100000);
  const std::size_t packed_sizes[] = {18, zip.rfind("PK\1\2") + 20};
  for (const std::size_t place : packed_sizes) --zip[place];
  EXPECT_THAT(ProblemOf(zip),
              HasSubstr("entry \"A.dll\": no zip archive, cut off or damaged (its content ends too early)"));
}

TEST(Archive, what_is_no_zip_file_is_refused) {
  for (const std::string& text : {std::string(), std::string("no zip file"), std::string(100000, 'x')}) {
    EXPECT_THAT(ProblemOf(text), AllOf(HasSubstr("a.opk: no zip archive, cut off or damaged"), HasSubstr("; ")));
  }
}

TEST(Archive, a_cut_off_archive_is_refused_wherever_it_ends) {
  const std::string zip = ZipOf({{"bin/A.dll", "first"}, {"bin/B.dll", "second"}});
  for (std::size_t length = 0; length < zip.size(); ++length) {
    EXPECT_NE(ProblemOf(zip.substr(0, length)), "no error") << length;
  }
  EXPECT_EQ(ProblemOf(zip), "no error");
}

}  // namespace
}  // namespace orvelbox
