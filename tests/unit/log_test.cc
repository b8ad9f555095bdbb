// FunctionEntryExitTracker and the log macros.
#include "util/log.h"

#include <stdexcept>
#include <type_traits>

#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr LogSource kLogSource{kPluginTag, "morvath"};

// The journal of one tracker, with the label in all its places.
void ExpectLabel(const std::string& label, const char* signature, const char* path, int line) {
  Platform& platform = doubles::Reset();
  { FunctionEntryExitTracker tracker(signature, path, line); }
  ASSERT_EQ(4u, platform.journal.size());
  EXPECT_EQ(" +DotNETLog:" + label, doubles::MessageOf(platform.journal[0].log));
  EXPECT_EQ(Event::Kind::kSpanBegin, platform.journal[1].kind);
  EXPECT_EQ(label, platform.journal[1].text);
  EXPECT_EQ("-DotNETLog:" + label, doubles::MessageOf(platform.journal[2].log));
  EXPECT_EQ(Event::Kind::kSpanEnd, platform.journal[3].kind);
}

FRESH_TEST(Tracker, a_scope_is_framed_by_lines_and_a_span) {
  { FunctionEntryExitTracker tracker("int gac(const std::string&)", "plugin/morvath", 12); }
  EXPECT_TRUE(Holds(platform, {Traced("morvath", "int gac(const std::string&)", {}, 12)}));
}

TEST(Tracker, a_line_reads_exactly_so) {
  Platform& platform = doubles::Reset();
  { FunctionEntryExitTracker tracker("void f()", "plugin/morvath", 12); }
  const doubles::LogLine& entry = platform.journal[0].log;
  EXPECT_EQ("log: FunctionEntryExitTracker(" + std::to_string(entry.line) +
                ") > \033[90m +DotNETLog:morvath(12) void f()\033[0m\n",
            entry.text);
  EXPECT_EQ(0, entry.log_id);
  EXPECT_EQ(3, entry.priority);
  EXPECT_EQ("QUARNEL", entry.tag);
  const doubles::LogLine& exit = platform.journal[2].log;
  EXPECT_EQ("log: ~FunctionEntryExitTracker(" + std::to_string(exit.line) +
                ") > \033[90m-DotNETLog:morvath(12) void f()\033[0m\n",
            exit.text);
  EXPECT_EQ(3, exit.priority);
  EXPECT_EQ("QUARNEL", exit.tag);
}

struct LabelRow {
  const char* path;
  int line;
  const char* signature;
  const char* label;
};

TEST(Tracker, the_label_is_made_of_base_name_line_and_signature) {
  const LabelRow rows[] = {
      {"morvath", 1, "void f()", "morvath(1) void f()"},
      {"a/b/morvath", 1, "void f()", "morvath(1) void f()"},
      {"/a/morvath.cc", 381, "void f()", "morvath.cc(381) void f()"},
      {"no slash at all", 1, "void f()", "no slash at all(1) void f()"},
      {"a/", 1, "void f()", "(1) void f()"},
      {"", 1, "", "(1) "},
      {"a\\b", 1, "f", "a\\b(1) f"},
      {"morvath", 0, "void f()", "morvath(0) void f()"},
      {"morvath", -7, "void f()", "morvath(-7) void f()"},
      {"morvath", 2147483647, "f", "morvath(2147483647) f"},
      {"morvath", -2147483647 - 1, "f", "morvath(-2147483648) f"},
  };
  for (const LabelRow& row : rows) ExpectLabel(row.label, row.signature, row.path, row.line);
}

TEST(Tracker, a_label_with_percent_signs_reaches_log_and_span_unchanged) {
  ExpectLabel("morvath(1) f%s%n%d 100%", "f%s%n%d 100%", "x/morvath", 1);
  ExpectLabel("%s(1) f", "f", "%s", 1);
}

TEST(Tracker, long_texts_are_whole_in_the_label) {
  const std::string signature(5000, 's');
  const std::string path(5000, 'p');
  ExpectLabel(path + "(3) " + signature, signature.c_str(), path.c_str(), 3);
}

TEST(Tracker, the_texts_are_copied) {
  Platform& platform = doubles::Reset();
  std::string signature = "void f()";
  std::string path = "morvath";
  {
    FunctionEntryExitTracker tracker(signature.c_str(), path.c_str(), 1);
    signature.assign(signature.size(), '?');
    path.assign(path.size(), '?');
  }
  EXPECT_TRUE(Holds(platform, {Traced("morvath", "void f()", {}, 1)}));
}

TEST(Tracker, a_scope_left_by_an_exception_writes_its_exit_line_and_ends_its_span) {
  Platform& platform = doubles::Reset();
  const auto leave = [] {
    FunctionEntryExitTracker outer("void outer()", "morvath", 1);
    FunctionEntryExitTracker inner("void inner()", "morvath", 2);
    throw std::runtime_error("on the way");
  };
  EXPECT_THROW(leave(), std::runtime_error);
  EXPECT_TRUE(Holds(platform, {Traced("morvath", "void outer()", {Traced("morvath", "void inner()", {}, 2)}, 1)}));
}

TEST(Tracker, a_null_path_or_signature_raises_and_writes_nothing) {
  Platform& platform = doubles::Reset();
  EXPECT_TRUE(RaisesNullString([] { FunctionEntryExitTracker tracker("void f()", nullptr, 1); }));
  EXPECT_TRUE(RaisesNullString([] { FunctionEntryExitTracker tracker(nullptr, "plugin/morvath", 1); }));
  EXPECT_TRUE(platform.journal.empty());
}

TEST(Tracker, the_result_of_the_log_is_not_looked_at) {
  Platform& platform = doubles::Reset();
  platform.FailNext("__dlog_print", -1);
  { FunctionEntryExitTracker tracker("void f()", "morvath", 1); }
  EXPECT_TRUE(Holds(platform, {Traced("morvath", "void f()", {}, 1)}));
}

TEST(Tracker, the_end_of_a_scope_never_throws) {
  EXPECT_TRUE(std::is_nothrow_destructible_v<FunctionEntryExitTracker>);
}

TEST(Log, each_kind_has_its_priority_and_colour) {
  Platform& platform = doubles::Reset();
  LOG_DEBUG("number %d", 1);
  LOG_INFO("text %s", "x");
  LOG_ERROR("plain");
  const Source source("morvath", "TestBody");
  EXPECT_TRUE(Holds(platform, {source.Debug("number %d", 1), source.Info("text %s", "x"), source.Error("plain")}));
}

TEST(Log, a_trace_line_is_grey_at_debug_priority) {
  Platform& platform = doubles::Reset();
  const int line = __LINE__ + 1;
  LOG_TRACE("%s", "path");
  ASSERT_EQ(1u, platform.journal.size());
  EXPECT_EQ("morvath: TestBody(" + std::to_string(line) + ") > \033[90mpath\033[0m\n", platform.journal[0].log.text);
  EXPECT_EQ(3, platform.journal[0].log.priority);
}

TEST(Log, the_line_field_is_that_of_the_statement_or_the_fixed_one) {
  Platform& platform = doubles::Reset();
  const int line = __LINE__ + 1;
  LOG_ERROR("here");
  LOG_ERROR_AT(392, "there");
  LOG_INFO_AT(412, "there");
  LOG_DEBUG_AT(396, "there");
  const Source source("morvath", "TestBody");
  EXPECT_TRUE(Holds(platform, {source.At(line).Error("here"), source.At(392).Error("there"),
                               source.At(412).Info("there"), source.At(396).Debug("there")}));
}

}  // namespace
}  // namespace unit
