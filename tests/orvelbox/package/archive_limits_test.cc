// How much a package archive may hold.
#include "tests/orvelbox/package/archive_frame.h"

namespace orvelbox {
namespace {

TEST(Archive, no_more_entries_than_the_limit_are_taken) {
  ArchiveLimits limits;
  limits.entries = 3;
  EXPECT_EQ(ProblemOf(ZipOf({{"a/b/c", ""}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"a/b/c/d", ""}}), limits), HasSubstr("more than 3 files and directories"));
  EXPECT_THAT(ProblemOf(ZipOf({{"a", ""}, {"b", ""}, {"c", ""}, {"d", ""}}), limits),
              HasSubstr("entry \"d\" is one too many"));
}

TEST(Archive, no_deeper_paths_than_the_limit_are_taken) {
  ArchiveLimits limits;
  limits.depth = 2;
  EXPECT_EQ(ProblemOf(ZipOf({{"a/b", ""}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"a/b/c", ""}}), limits), HasSubstr("more than 2 directories deep"));
}

TEST(Archive, no_more_bytes_of_paths_than_the_limit_are_taken) {
  ArchiveLimits limits;
  limits.all_path_bytes = 10;
  EXPECT_EQ(ProblemOf(ZipOf({{"four", ""}, {"sixsix", ""}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"four", ""}, {"seven77", ""}}), limits), HasSubstr("more than 10 bytes in all"));
}

TEST(Archive, no_longer_paths_than_the_limit_are_taken) {
  ArchiveLimits limits;
  limits.path_bytes = 5;
  EXPECT_EQ(ProblemOf(ZipOf({{"a/b/c", ""}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"a/b/cd", ""}}), limits), HasSubstr("more than 5 bytes"));
}

TEST(Archive, no_more_bytes_than_the_limit_are_unpacked) {
  ArchiveLimits limits;
  limits.bytes = 6;
  EXPECT_EQ(ProblemOf(ZipOf({{"a", "123"}, {"b", "456"}}), limits), "no error");
  EXPECT_THAT(ProblemOf(ZipOf({{"a", "123"}, {"b", "4567"}}), limits), HasSubstr("larger than 6 bytes"));
}

TEST(Archive, what_unpacks_to_suspiciously_much_is_refused) {
  ArchiveLimits limits;
  limits.ratio = 100;
  limits.unsuspicious_bytes = 1 << 20;
  EXPECT_EQ(ProblemOf(support::ZipOfZeros("zeros", 1 << 20), limits), "no error");
  EXPECT_THAT(ProblemOf(support::ZipOfZeros("zeros", (1 << 20) + 1), limits), HasSubstr("more than 100 times"));
  limits.ratio = 2000;
  EXPECT_EQ(ProblemOf(support::ZipOfZeros("zeros", (1 << 20) + 1), limits), "no error");
}

}  // namespace
}  // namespace orvelbox
