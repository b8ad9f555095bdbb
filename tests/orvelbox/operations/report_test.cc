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
  seen.coba = {CacheState::kMissing, true, {}, {}};
  seen.loader_restarted = true;
  EXPECT_THAT(DescribeEffects(seen, ""), ElementsAre("    TPA.txt  + /a", "             + /b", "             - /c",
                                                     "    CoBA.txt missing", "    loader   restarted"));
  seen.tpa = {CacheState::kSound, true, {}, {}};
  seen.coba = {CacheState::kSound, false, {}, {}};
  seen.loader_restarted = false;
  EXPECT_THAT(DescribeEffects(seen, ""), ElementsAre("    TPA.txt  rewritten, with the same entries",
                                                     "    CoBA.txt unchanged", "    loader   not restarted"));
}

TEST(Report, the_log_adds_why_nothing_was_done_and_what_failed) {
  Effects seen;
  seen.log.not_inhouse = true;
  seen.log.restart_failed = true;
  seen.log.errors = {"lstat error.", "another"};
  const std::string skipped =
      "    skipped  the plug-in did not take it for a package with an application of a \"dotnet-\" type";
  EXPECT_THAT(DescribeEffects(seen, ""), ElementsAre(skipped, "    TPA.txt  unchanged", "    CoBA.txt unchanged",
                                                     "    loader   restart failed: see the log",
                                                     "    error    lstat error.", "    error    another"));
  seen.loader_error = "gone";
  EXPECT_THAT(DescribeEffects(seen, ""), Contains("    loader   restart failed: gone"));
}

TEST(Report, a_dll_whose_origin_lies_in_the_read_write_area_is_kept) {
  Effects seen = WithDll("/opt/x/X.dll", true, false);
  seen.dlls[0].duplicate.fate = What::kStays;
  EXPECT_THAT(DescribeEffects(seen, "/root/a"),
              Contains("    kept     bin/X.dll: duplicates /opt/x/X.dll, whose copy is in the read-write area"));
  EXPECT_THAT(DescribeEffects(WithDll("/opt/x/X.dll", false, true), "/root/a"),
              Contains("    removed  bin/X.dll: it duplicates /opt/x/X.dll (see bin/X.dll_deleted)"));
}

TEST(Report, a_package_under_debugging_is_told_which_dlls_have_to_go) {
  Change change;
  change.package.id = "a";
  change.package.root = "/root/a";
  change.effects = WithDll(kPlatformDll, true, false);
  change.effects.log.guide = "see the guide";
  change.effects.hooks.results = {Returned("INSTALL", -1), {"UNDO", "a", HookResult::End::kCrashed, 0, "was killed"}};
  change.undone = true;
  EXPECT_THAT(
      DescribeChange(change),
      ElementsAre(
          "    INSTALL returned -1, UNDO was killed",
          "    The package is under debugging (it holds the app-debugging privilege); the install of such a package",
          "    fails when it brings DLLs that are there already. These have to go from the package:",
          "      bin/X.dll: the platform has " + std::string(kPlatformDll), "    see the guide"));
  EXPECT_EQ(ComplaintAbout("install", change),
            "a: install failed, the package is under debugging and 1 of its DLLs is there already; take it out of the "
            "package and try again");
  change.undone = false;
  EXPECT_THAT(DescribeChange(change), Contains("    TPA.txt  unchanged"));
  change.effects.hooks.results = {Returned("CLEAN", 0)};
  EXPECT_THAT(DescribeChange(change), Not(Contains("    see the guide")));
  change.effects.hooks = {{}, "no such plug-in"};
  EXPECT_EQ(ComplaintAbout("install", change), "a: install failed, no such plug-in");
  EXPECT_EQ(DescribeChange(change).size(), 8U) << "without a line of hooks";
}

TEST(Report, hooks_are_told_one_by_one_with_their_packages) {
  EXPECT_THAT(
      DescribeHooksByPackage({{Returned("INSTALL", 3), {"CLEAN", "b", HookResult::End::kThrew, 0, "threw"}}, ""}),
      ElementsAre("INSTALL a returned 3", "CLEAN b threw"));
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
