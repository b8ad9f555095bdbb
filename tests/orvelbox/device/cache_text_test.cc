// Cache files compared entry by entry.
#include "orvelbox/device/cache_text.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(CacheDiff, entries_stand_between_the_markers) {
  EXPECT_THAT(EntriesOf("[START]/a/x.dll:/b/y.dll[END]"), ElementsAre("/a/x.dll", "/b/y.dll"));
  EXPECT_THAT(EntriesOf("[START][END]"), IsEmpty());
  EXPECT_THAT(EntriesOf(std::nullopt), IsEmpty());
}

TEST(CacheDiff, empty_entries_are_left_out) { EXPECT_THAT(EntriesOf("[START]:/a::/b:[END]"), ElementsAre("/a", "/b")); }

TEST(CacheDiff, a_damaged_text_still_gives_its_entries) {
  EXPECT_THAT(EntriesOf("/a:/b[END]"), ElementsAre("/a", "/b"));
  EXPECT_THAT(EntriesOf("[START]/a"), ElementsAre("/a"));
}

TEST(CacheDiff, a_text_is_sound_with_both_markers_only) {
  EXPECT_EQ(StateOf("[START][END]"), CacheState::kSound);
  EXPECT_EQ(StateOf("[START]/a"), CacheState::kDamaged);
  EXPECT_EQ(StateOf("/a[END]"), CacheState::kDamaged);
  EXPECT_EQ(StateOf("[START]/a[END]\n"), CacheState::kDamaged);
  EXPECT_EQ(StateOf(""), CacheState::kDamaged);
  EXPECT_EQ(StateOf(std::nullopt), CacheState::kMissing);
}

TEST(CacheDiff, gains_and_losses_are_told_apart) {
  const CacheChange change = Compare("[START]/a:/b[END]", "[START]/b:/c[END]");
  EXPECT_THAT(change.gained, ElementsAre("/c"));
  EXPECT_THAT(change.lost, ElementsAre("/a"));
  EXPECT_TRUE(change.rewritten);
}

TEST(CacheDiff, another_order_is_no_gain_but_a_rewrite) {
  const CacheChange change = Compare("[START]/a:/b[END]", "[START]/b:/a[END]");
  EXPECT_THAT(change.gained, IsEmpty());
  EXPECT_THAT(change.lost, IsEmpty());
  EXPECT_TRUE(change.rewritten);
}

TEST(CacheDiff, an_entry_that_is_there_twice_counts_twice) {
  EXPECT_THAT(Compare("[START]/a[END]", "[START]/a:/a[END]").gained, ElementsAre("/a"));
}

TEST(CacheDiff, a_file_that_went_lost_all_its_entries) {
  const CacheChange change = Compare("[START]/a[END]", std::nullopt);
  EXPECT_EQ(change.state, CacheState::kMissing);
  EXPECT_THAT(change.lost, ElementsAre("/a"));
}

}  // namespace
}  // namespace orvelbox
