// Zip files whose records are unusual, or contradict each other.
#include <sys/stat.h>

#include "tests/orvelbox/package/archive_frame.h"

namespace orvelbox {
namespace {

constexpr std::size_t kEndSize = 22;
constexpr std::size_t kLocatorSize = 20;
constexpr std::size_t kEnd64Size = 56;
constexpr std::size_t kEntrySize = 46;
constexpr std::size_t kName = 5;

std::string Damaged(const std::string& why) {
  return "a.opk: no zip archive, cut off or damaged (" + why + "); make it anew, or fetch it again";
}

std::string WithByte(std::string zip, std::size_t at, char byte) {
  zip.at(at) = byte;
  return zip;
}

std::size_t EntryIn(const std::string& zip) { return zip.find("PK\x01\x02"); }

std::string Plain() { return ZipOf({{"A.dll", "content"}}); }

std::string Wide() {
  support::ZipEntry wide{"A.dll", "content"};
  wide.wide = true;
  return ZipOf({wide});
}

// With a comment at its end, which tells its length.
std::string WithComment(const std::string& comment) {
  std::string zip = Plain();
  zip[zip.size() - 2] = static_cast<char>(comment.size() & 0xffU);
  zip[zip.size() - 1] = static_cast<char>(comment.size() >> 8U);
  return zip + comment;
}

TEST(ZipEnd, an_archive_may_be_empty_or_have_a_comment) {
  EXPECT_EQ(ProblemOf(ZipOf({})), "no error");
  EXPECT_EQ(ProblemOf(ZipOf({}) + "x"), Damaged("its end has no directory of entries"));
  EXPECT_EQ(ProblemOf("PK\5\6"), Damaged("its end has no directory of entries"));
  for (const std::string& comment :
       {std::string("PK\5\6"), "PK\5\6" + std::string(30, 'x'), std::string(0xffff, 'x')}) {
    EXPECT_THAT(Read(WithComment(comment)), ElementsAre(Pair("A.dll", "content")));
    EXPECT_EQ(ProblemOf(WithComment(comment) + "x"), Damaged("its end has no directory of entries"));
  }
}

TEST(ZipEnd, an_archive_in_several_parts_is_refused) {
  const std::string zip = Plain();
  for (std::size_t at = 4; at < 12; ++at) {
    EXPECT_EQ(ProblemOf(WithByte(zip, zip.size() - kEndSize + at, 2)), Damaged("it is one of several parts")) << at;
  }
}

TEST(ZipEnd, the_directory_has_to_fit_in) {
  const std::string zip = Plain();
  const std::size_t end = zip.size() - kEndSize;
  for (const std::size_t at : {12U, 15U, 16U, 19U}) {
    EXPECT_EQ(ProblemOf(WithByte(zip, end + at, '\x7f')), Damaged("its directory of entries does not fit in")) << at;
  }
  const char size = zip[end + 12];
  EXPECT_EQ(ProblemOf(WithByte(zip, end + 12, static_cast<char>(size - 1))), Damaged("its directory ends too early"));
  EXPECT_EQ(ProblemOf(WithByte(WithByte(zip, end + 8, 2), end + 10, 2)), Damaged("its directory ends too early"));
  EXPECT_EQ(ProblemOf(WithByte(WithByte(zip, end + 8, 0), end + 10, 0)),
            Damaged("its directory holds more than its entries"));
}

TEST(ZipEnd, the_64_bit_record_has_to_stand_where_its_locator_says) {
  const std::string zip = Wide();
  const std::size_t locator = zip.size() - kEndSize - kLocatorSize;
  EXPECT_EQ(ProblemOf(WithByte(zip, locator - kEnd64Size, 'X')),
            Damaged("its 64-bit end record is not where it should be"));
  EXPECT_EQ(ProblemOf(WithByte(zip, locator + 15, '\x7f')), Damaged("it ends too early"));
}

TEST(ZipEntries, a_damaged_record_is_refused) {
  const std::string zip = Plain();
  EXPECT_EQ(ProblemOf(WithByte(zip, EntryIn(zip), 'X')), Damaged("its directory is damaged"));
  for (const std::size_t length : {28U, 30U, 32U}) {
    EXPECT_EQ(ProblemOf(WithByte(zip, EntryIn(zip) + length, 6)), Damaged("its directory ends too early")) << length;
  }
}

TEST(ZipEntries, a_64_bit_number_needs_eight_bytes) {
  const std::string zip = Wide();
  EXPECT_EQ(ProblemOf(WithByte(zip, EntryIn(zip) + kEntrySize + kName + 2, 23)), Damaged("a 64-bit number is missing"));
  EXPECT_EQ(ProblemOf(WithByte(zip, 30 + kName + 2, 15)), Damaged("a 64-bit number is missing"));
  std::string none = WithByte(zip, EntryIn(zip) + kEntrySize + kName + 2, 0);
  none[EntryIn(zip) + 30] = 4;   // the length of the extra field: only its header
  none[EntryIn(zip) + 32] = 24;  // that of the comment: the rest
  EXPECT_EQ(ProblemOf(none), Damaged("a 64-bit number is missing"));
}

TEST(ZipEntries, only_the_numbers_that_did_not_fit_are_in_the_64_bit_field) {
  std::string zip = Wide();
  const std::size_t entry = EntryIn(zip);
  for (const std::size_t size_at : {20U, 24U}) zip.replace(entry + size_at, 4, std::string("\x07\0\0\0", 4));
  zip.replace(entry + kEntrySize + kName + 4, 8, std::string(8, '\0'));  // where the entry's own header is
  EXPECT_THAT(Read(zip), ElementsAre(Pair("A.dll", "content")));
}

TEST(ZipEntries, a_field_of_another_kind_holds_none_of_the_numbers) {
  const std::string zip = Wide();
  EXPECT_THAT(ProblemOf(WithByte(zip, EntryIn(zip) + kEntrySize + kName, 2)), HasSubstr("makes the package larger"));
}

TEST(ZipEntries, a_mode_counts_only_where_it_was_written_on_unix) {
  const std::string zip = ZipOf({{"A.dll", "content", S_IFLNK | 0777}});
  EXPECT_THAT(ProblemOf(zip), HasSubstr("is a link"));
  EXPECT_EQ(ProblemOf(WithByte(zip, EntryIn(zip) + 5, 0)), "no error");
}

TEST(ZipEntries, a_header_at_the_files_end_is_cut_off) {
  const std::string zip = Plain();
  EXPECT_EQ(ProblemOf(WithByte(zip, EntryIn(zip) + 42, static_cast<char>(zip.size() - 10))),
            "a.opk: entry \"A.dll\": no zip archive, cut off or damaged (its own header is cut off); make it anew, or "
            "fetch it again");
}

TEST(ZipEntries, sizes_that_follow_the_content_may_be_missing_in_front_of_it) {
  support::ZipEntry entry{"A.dll", "content"};
  entry.flags = 8;
  std::string zip = ZipOf({entry});
  for (std::size_t at = 14; at < 26; ++at) zip[at] = 0;
  EXPECT_THAT(Read(zip), ElementsAre(Pair("A.dll", "content")));
  for (const auto& [at, what] : {std::pair<std::size_t, const char*>{14, "checksums"}, {18, "sizes"}, {22, "sizes"}}) {
    EXPECT_THAT(ProblemOf(WithByte(zip, at, 1)), HasSubstr(std::string("tell different ") + what));
  }
  zip[6] = 0;
  EXPECT_THAT(ProblemOf(zip), HasSubstr("tell different sizes"));
}

}  // namespace
}  // namespace orvelbox
