// The comparison of journals can fail: for every property of a log line and of the nesting there is a wrong one here.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/package_info.h"
#include "orvel/pkgmgr_info.h"
#include "orvel/trace.h"
#include "tests/support/unit_case.h"

namespace {

using doubles::Difference;
using doubles::Event;
using doubles::Restart;
using doubles::Source;
using doubles::Steps;
using doubles::Traced;

constexpr const char* kTag = "NETCORE_INSTALLER_PLUGIN";

std::vector<Event> JournalOf(const std::function<void()>& calls) {
  doubles::Reset();
  calls();
  return doubles::Current().journal;
}

void LogGoodLine() { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad %s\033[0m\n", "morvath", "gac", 7, "x"); }

void Enter() {
  __dlog_print(0, 3, "QUARNEL", "%s: %s(%d) > \033[90m +DotNETLog:%s\033[0m\n", "log", "FunctionEntryExitTracker", 5,
               "morvath(9) void f()");
  trace_begin("morvath(9) void f()");
}

void LeaveAs(const char* label) {
  __dlog_print(0, 3, "QUARNEL", "%s: %s(%d) > \033[90m-DotNETLog:%s\033[0m\n", "log", "~FunctionEntryExitTracker", 6,
               label);
  trace_end();
}

TEST(Doubles, a_line_is_met_by_its_own_expectation) {
  EXPECT_EQ("", Difference(JournalOf(LogGoodLine), Source("morvath", "gac").Error("bad %s", "x")));
  EXPECT_EQ("", Difference(JournalOf(LogGoodLine), Source("morvath", "gac").At(7).Error("bad %s", "x")));
}

TEST(Doubles, every_part_of_a_line_is_compared) {
  const Source gac("morvath", "gac");
  const std::vector<Steps> wrong = {gac.Error("bad %s", "y"),
                                    gac.Error("bad x"),
                                    gac.Info("bad %s", "x"),
                                    gac.Debug("bad %s", "x"),
                                    gac.At(8).Error("bad %s", "x"),
                                    Source("log", "gac").Error("bad %s", "x"),
                                    Source("morvath", "gad").Error("bad %s", "x"),
                                    Steps{}};
  for (const Steps& expected : wrong) EXPECT_NE("", Difference(JournalOf(LogGoodLine), expected));
}

TEST(Doubles, a_malformed_line_meets_nothing) {
  const std::vector<std::function<void()>> wrong = {
      [] { __dlog_print(1, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 5, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, "QUARNEL", "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[36mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 0); },
      [] { __dlog_print(0, 6, kTag, "morvath: gac(7) > \033[31mbad\033[0m\n"); }};
  for (const auto& call : wrong) {
    EXPECT_NE("", Difference(JournalOf(call), Source("morvath", "gac").Error("bad")));
  }
}

TEST(Doubles, a_traced_function_is_met_by_its_own_expectation) {
  const auto journal = JournalOf([] {
    Enter();
    LeaveAs("morvath(9) void f()");
  });
  EXPECT_EQ("", Difference(journal, Traced("morvath", "void f()", Steps{})));
  EXPECT_EQ("", Difference(journal, Traced("morvath", "void f()", Steps{}, 9)));
  EXPECT_NE("", Difference(journal, Traced("morvath", "void f()", Steps{}, 8)));
  EXPECT_NE("", Difference(journal, Traced("morvath", "void g()", Steps{})));
  EXPECT_NE("", Difference(journal, Traced("log", "void f()", Steps{})));
}

TEST(Doubles, trackers_that_do_not_pair_up_are_told) {
  const auto other_line = JournalOf([] {
    Enter();
    LeaveAs("morvath(10) void f()");
  });
  EXPECT_NE("", Difference(other_line, Traced("morvath", "void f()", Steps{})));
  const auto other_span = JournalOf([] {
    Enter();
    Enter();
    doubles::Current().journal.pop_back();
    trace_begin("morvath(10) void f()");
    LeaveAs("morvath(9) void f()");
    LeaveAs("morvath(9) void f()");
  });
  EXPECT_NE("", Difference(other_span, Traced("morvath", "void f()", {Traced("morvath", "void f()", Steps{})})));
}

TEST(Doubles, a_restart_is_an_event_and_other_calls_are_compared_only_when_expected) {
  const auto journal = JournalOf([] {
    aul_restart_loader("loader");
    package_info_destroy(nullptr);
  });
  EXPECT_EQ("", Difference(journal, Restart("loader")));
  EXPECT_NE("", Difference(journal, Restart("other")));
  EXPECT_EQ("", Difference(journal, doubles::Join({Restart("loader"), doubles::Call("package_info_destroy()")})));
  EXPECT_NE("", Difference(journal, doubles::Join({Restart("loader"), doubles::Call("package_info_create(x)")})));
}

TEST(Doubles, a_record_destroyed_twice_or_of_another_kind_is_a_misuse) {
  doubles::Platform& platform = doubles::Reset();
  platform.packages.push_back(doubles::MakePackage("p", "/p"));
  pkgmgrinfo_pkginfo_h package = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_pkginfo_get_pkginfo("p", &package));
  EXPECT_FALSE(AllRecordsDestroyed(platform));
  EXPECT_NE(0, package_info_destroy(package));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(package));
  EXPECT_NE(0, pkgmgrinfo_pkginfo_destroy_pkginfo(package));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
  EXPECT_EQ((std::vector<std::string>{"package_info_destroy", "pkgmgrinfo_pkginfo_destroy_pkginfo"}), platform.misuses);
}

TEST(Doubles, the_text_of_a_destroyed_record_is_gone) {
  doubles::Platform& platform = doubles::Reset();
  platform.packages.push_back(doubles::MakePackage("p", "/p"));
  pkgmgrinfo_appinfo_h application = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("p", &application));
  char* root = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_root_path(application, &root));
  EXPECT_STREQ("/p", root);
  ASSERT_EQ(0, pkgmgrinfo_appinfo_destroy_appinfo(application));
  EXPECT_STREQ("??", root);
}

TEST(Doubles, a_failure_asked_for_is_answered_once) {
  doubles::Reset().FailNext("aul_restart_loader", -3);
  EXPECT_EQ(-3, aul_restart_loader("loader"));
  EXPECT_EQ(0, aul_restart_loader("loader"));
}

}  // namespace
