// Texts for results that the end-to-end tests do not produce.
#include "orvelbox/operations/report.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

constexpr const char* kPlatformDll = "/usr/share/dotnet.orvel/framework/X.dll";

Effects WithDll(const std::string& origin, bool there, bool information_file) {
  Effects seen;
  seen.dlls.push_back({{origin, "/root/a/bin/X.dll"}, there, information_file});
  return seen;
}

HookResult Returned(const std::string& hook, int value) { return {hook, "a", HookResult::End::kReturned, value, ""}; }

TEST(Report, a_removed_dll_without_an_information_file_names_none) {
  EXPECT_THAT(DescribeEffects(WithDll(kPlatformDll, false, false), "/root/a"),
              Contains("    removed  bin/X.dll: the platform has " + std::string(kPlatformDll)));
}

TEST(Report, a_dll_that_could_not_be_removed_is_not_called_removed) {
  EXPECT_THAT(DescribeEffects(WithDll(kPlatformDll, true, true), "/root/a"),
              Contains("    kept     bin/X.dll: the platform has " + std::string(kPlatformDll) +
                       "; removing it failed, see: orvelbox log --priority E"));
}

TEST(Report, a_package_with_its_own_second_copy_is_told_where_the_first_is) {
  EXPECT_THAT(DescribeEffects(WithDll("/root/a/lib/X.dll", false, false), "/root/a"),
              Contains("    removed  bin/X.dll: the package has it already as lib/X.dll"));
}

TEST(Report, a_package_whose_root_begins_like_another_one_is_not_the_same) {
  EXPECT_THAT(DescribeEffects(WithDll("/root/ab/X.dll", false, false), "/root/a"),
              Contains("    removed  bin/X.dll: it duplicates /root/ab/X.dll"));
}

TEST(Report, every_cache_entry_has_a_line_and_the_file_is_named_once) {
  Effects seen;
  seen.tpa = {CacheState::kSound, true, {"/a", "/b"}, {"/c"}};
  EXPECT_THAT(DescribeEffects(seen, ""), ElementsAre("    TPA.txt  + /a", "             + /b", "             - /c",
                                                     "    CoBA.txt unchanged", "    loader   not restarted"));
}

TEST(Report, a_cache_file_that_went_or_was_damaged_is_told) {
  Effects seen;
  seen.tpa = {CacheState::kMissing, true, {}, {}};
  seen.coba = {CacheState::kSound, true, {}, {}};
  EXPECT_THAT(DescribeEffects(seen, ""), Contains("    TPA.txt  missing"));
  EXPECT_THAT(DescribeEffects(seen, ""), Contains("    CoBA.txt rewritten, with the same entries"));
}

TEST(Report, other_errors_of_the_log_are_shown) {
  Effects seen;
  seen.log.errors = {"lstat error."};
  EXPECT_THAT(DescribeEffects(seen, ""), Contains("    error    lstat error."));
}

TEST(Report, success_has_no_reason_of_failure) {
  Effects seen;
  seen.hooks.results = {Returned("INSTALL", 0), Returned("CLEAN", 0)};
  EXPECT_EQ(ReasonOfFailure(seen), "");
  EXPECT_THAT(ExplainDebuggingFailure(seen, ""), IsEmpty());
}

TEST(Report, a_failed_install_without_the_guide_line_is_told_by_its_result) {
  Effects seen;
  seen.hooks.results = {Returned("INSTALL", -1), Returned("UNDO", 0)};
  EXPECT_EQ(ReasonOfFailure(seen), "INSTALL returned -1; see: orvelbox log --priority E");
}

TEST(Report, the_number_of_duplicates_is_told_in_the_right_grammar) {
  Effects seen = WithDll(kPlatformDll, false, true);
  seen.log.guide = "guide";
  EXPECT_THAT(ReasonOfFailure(seen), HasSubstr("1 of its DLLs is there already; take it out"));
  seen.dlls.push_back(seen.dlls.front());
  EXPECT_THAT(ReasonOfFailure(seen), HasSubstr("2 of its DLLs are there already; take them out"));
}

}  // namespace
}  // namespace orvelbox
