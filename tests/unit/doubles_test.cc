// The comparison of journals can fail: for every property of a log line and of the nesting there is a wrong example.
#include "orvel/aul.h"
#include "orvel/dlog.h"
#include "orvel/package_info.h"
#include "orvel/trace.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kTag = "NETCORE_INSTALLER_PLUGIN";
const std::string kLabel = "morvath(9) void f()";

// Does the journal of the calls consist of exactly these steps?
bool Meets(const std::function<void()>& calls, const Steps& steps) {
  const Platform& platform = doubles::Reset();
  calls();
  return doubles::Difference(platform.journal, steps).empty();
}

void LogGoodLine() { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad %s\033[0m\n", "morvath", "gac", 7, "x"); }

void Enter(const std::string& span = kLabel) {
  __dlog_print(0, 3, "QUARNEL", "%s: %s(%d) > \033[90m +DotNETLog:%s\033[0m\n", "log", "FunctionEntryExitTracker", 5,
               kLabel.c_str());
  trace_begin(span.c_str());
}

void LeaveAs(const std::string& label = kLabel) {
  __dlog_print(0, 3, "QUARNEL", "%s: %s(%d) > \033[90m-DotNETLog:%s\033[0m\n", "log", "~FunctionEntryExitTracker", 6,
               label.c_str());
  trace_end();
}

TEST(Doubles, every_part_of_a_line_is_compared) {
  const Source gac("morvath", "gac");
  EXPECT_TRUE(Meets(LogGoodLine, gac.Error("bad %s", "x")));
  EXPECT_TRUE(Meets(LogGoodLine, gac.At(7).Error("bad %s", "x")));
  for (const Steps& wrong :
       {gac.Error("bad %s", "y"), gac.Error("bad x"), gac.Info("bad %s", "x"), gac.Debug("bad %s", "x"),
        gac.At(8).Error("bad %s", "x"), gac.At(77).Error("bad %s", "x"), Source("log", "gac").Error("bad %s", "x"),
        Source("morvath", "gad").Error("bad %s", "x"), Steps{}}) {
    EXPECT_FALSE(Meets(LogGoodLine, wrong)) << testing::PrintToString(wrong);
  }
}

TEST(Doubles, a_malformed_line_meets_nothing) {
  const std::function<void()> wrong[] = {
      [] { __dlog_print(1, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 5, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, "QUARNEL", "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[36mbad\033[0m\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\n", "morvath", "gac", 7); },
      [] { __dlog_print(0, 6, kTag, "%s: %s(%d) > \033[31mbad\033[0m\n", "morvath", "gac", 0); },
      [] { __dlog_print(0, 6, kTag, "morvath: gac(7) > \033[31mbad\033[0m\n"); }};
  for (const auto& call : wrong) EXPECT_FALSE(Meets(call, Source("morvath", "gac").Error("bad")));
}

TEST(Doubles, a_traced_function_is_met_by_its_own_expectation_when_its_trackers_pair_up) {
  const Steps traced = Traced("morvath", "void f()", Steps{});
  const auto good = [] { Enter(), LeaveAs(); };
  EXPECT_TRUE(Meets(good, traced));
  EXPECT_TRUE(Meets(good, Traced("morvath", "void f()", Steps{}, 9)));
  EXPECT_FALSE(Meets(good, Traced("morvath", "void f()", Steps{}, 8)));
  EXPECT_FALSE(Meets(good, Traced("morvath", "void g()", Steps{})));
  EXPECT_FALSE(Meets(good, Traced("log", "void f()", Steps{})));
  EXPECT_FALSE(Meets([] { Enter(), LeaveAs("morvath(10) void f()"); }, traced));
  EXPECT_FALSE(Meets([] { Enter("morvath(10) void f()"), LeaveAs(); }, traced));
}

TEST(Doubles, a_restart_is_an_event_and_other_calls_are_compared_only_when_expected) {
  const auto calls = [] { aul_restart_loader("loader"), package_info_destroy(nullptr); };
  EXPECT_TRUE(Meets(calls, Restart("loader")));
  EXPECT_FALSE(Meets(calls, Restart("other")));
  EXPECT_TRUE(Meets(calls, Join({Restart("loader"), Call("package_info_destroy()")})));
  EXPECT_FALSE(Meets(calls, Join({Restart("loader"), Call("package_info_create(x)")})));
}

}  // namespace
}  // namespace unit
