// Parsing the report of the hook process.

#include "orvelbox/operations/hook_process.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(HookReport, results_follow_their_hooks) {
  const HookRun run = ReadHookReport("begin INSTALL a b\nreturned -1\nbegin UNDO a b\nreturned 0\n", "ended");
  ASSERT_EQ(run.results.size(), 2U);
  EXPECT_EQ(run.results[0].hook, "INSTALL");
  EXPECT_EQ(run.results[0].package_id, "a b");
  EXPECT_EQ(run.results[0].end, HookResult::End::kReturned);
  EXPECT_EQ(run.results[0].value, -1);
  EXPECT_EQ(run.results[1].value, 0);
  EXPECT_FALSE(run.Succeeded());
}

TEST(HookReport, zero_from_every_hook_is_success) {
  EXPECT_TRUE(ReadHookReport("begin CLEAN a\nreturned 0\n", "ended").Succeeded());
}

TEST(HookReport, a_hook_without_a_result_ended_with_its_process) {
  const HookRun run = ReadHookReport("begin CLEAN a\nreturned 0\nbegin CLEAN b\n", "was killed");
  ASSERT_EQ(run.results.size(), 2U);
  EXPECT_EQ(run.results[1].end, HookResult::End::kCrashed);
  EXPECT_EQ(run.results[1].message, "was killed");
  EXPECT_FALSE(run.Succeeded());
}

TEST(HookReport, a_line_that_is_not_complete_does_not_count) {
  EXPECT_EQ(ReadHookReport("begin CLEAN a\nreturned 0", "was killed").results[0].end, HookResult::End::kCrashed);
}

TEST(HookReport, an_exception_is_told_with_its_text) {
  const HookRun run = ReadHookReport("begin CLEAN a\nthrew no id\n", "ended");
  EXPECT_EQ(run.results[0].end, HookResult::End::kThrew);
  EXPECT_EQ(run.results[0].message, "threw an exception: no id");
}

TEST(HookReport, a_plug_in_that_cannot_be_loaded_is_no_success) {
  const HookRun run = ReadHookReport("problem no such file\n", "ended");
  EXPECT_EQ(run.problem, "no such file");
  EXPECT_FALSE(run.Succeeded());
}

}  // namespace
}  // namespace orvelbox
