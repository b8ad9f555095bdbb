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
  const std::string problem = ProblemOf(ZipOf(GetParam().entries));
  EXPECT_THAT(problem, StartsWith("a.opk: entry \"" + GetParam().entries.back().path + "\""));
  EXPECT_THAT(problem, HasSubstr(GetParam().complaint));
  EXPECT_THAT(problem, HasSubstr("; ")) << "the way out";
}

INSTANTIATE_TEST_SUITE_P(
    entry, BadArchive,
    testing::Values(BadEntry{"absolute", {{"/etc/passwd", ""}}, "absolute path"},
                    BadEntry{"leads_out", {{"../x", ""}}, "leads out of the package"},
                    BadEntry{"leads_out_later", {{"bin/../../x", ""}}, "leads out of the package"},
                    BadEntry{"dot_dot_inside", {{"bin/../x", ""}}, "leads out of the package"},
                    BadEntry{"dot_dot_directory", {{"bin/../", ""}}, "leads out of the package"},
                    BadEntry{"backslash", {{"bin/..\\x", ""}}, "holds \"\\\""},
                    BadEntry{"no_name", {{".", "x"}}, "has no name"},
                    BadEntry{"long_name", {{std::string(256, 'n'), ""}}, "more than 255 bytes"},
                    BadEntry{"link", {{"l", "/etc/passwd", S_IFLNK | 0777}}, "is a link"},
                    BadEntry{"terminal", {{"t", "", S_IFCHR | 0644}}, "is no file and no directory"},
                    BadEntry{"device", {{"d", "", S_IFBLK | 0644}}, "is no file and no directory"},
                    BadEntry{"encrypted", {{"e", std::string(20, 'x'), 0, 1}}, "is encrypted"},
                    BadEntry{"twice", {{"A.dll", "1"}, {"./A.dll", "2"}}, "is there twice"},
                    BadEntry{"file_then_directory", {{"bin", "1"}, {"bin/", ""}}, "is there twice"},
                    BadEntry{"directory_then_file", {{"bin/A.dll", "1"}, {"bin", ""}}, "is there twice"},
                    BadEntry{"below_a_file", {{"bin", "1"}, {"bin/A.dll", ""}}, "lies in \"bin\", which is a file"},
                    BadEntry{"damaged", {{"A.dll", "content", 0, 0, 1}}, "damaged"}),
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
  EXPECT_THAT(ProblemOf(zip), AllOf(testing::StartsWith("a.opk: entry \"A.dll\""), HasSubstr(GetParam().complaint)));
}

INSTANTIATE_TEST_SUITE_P(header, ContradictingArchive,
                         testing::Values(Contradiction{"signature", 0, 'X', "not where it should be"},
                                         Contradiction{"encrypted", 6, 1, "different kinds of content"},
                                         Contradiction{"method", 8, 8, "different kinds of content"},
                                         Contradiction{"checksum", 14, 0, "different checksums"},
                                         Contradiction{"packed_size", 18, 6, "different sizes"},
                                         Contradiction{"size", 22, 8, "different sizes"},
                                         Contradiction{"name", 30, 'B', "different names"},
                                         Contradiction{"length_of_name", 26, 4, "different names"}),
                         [](const auto& parameters) { return parameters.param.name; });

TEST(Archive, entries_that_share_bytes_are_refused) {
  std::string zip = ZipOf({{"A.dll", ZipOf({{"B.dll", "b"}})}, {"B.dll", "b"}});
  zip[zip.rfind("PK\x01\x02") + 42] = 30 + 5;  // a header inside the first entry's content
  EXPECT_THAT(ProblemOf(zip), HasSubstr("entry \"A.dll\": no zip archive, cut off or damaged (it reaches into"));
}

TEST(Archive, a_path_is_a_file_or_a_directory) {
  for (const support::ZipEntry& entry :
       {support::ZipEntry{"d", "", S_IFDIR | 0755}, {"f/", "", S_IFREG | 0644}, {"full/", "content"}}) {
    EXPECT_THAT(ProblemOf(ZipOf({entry})), HasSubstr("a file and a directory at once"));
  }
}

TEST(Archive, a_path_with_a_nul_is_refused) {
  EXPECT_THAT(ProblemOf(ZipOf({{std::string("A\0.dll", 6), ""}})), HasSubstr("holds a NUL"));
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
  EXPECT_THAT(ProblemOf(zip), HasSubstr("in another way than by deflate"));
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
