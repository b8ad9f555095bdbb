// Reading spans from trace events.
#include "orvelbox/trace/spans.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

std::string Event(char phase, const std::string& name, int time, int process = 7, int thread = 7) {
  return R"({"name":")" + name + R"(","ph":")" + phase + R"(","pid":)" + std::to_string(process) + R"(,"tid":)" +
         std::to_string(thread) + R"(,"ts":)" + std::to_string(time) + "}";
}

// The spans of all lanes as "name depth begin-end", with "?" for open ones; lanes begin with "process.thread:".
std::vector<std::string> SpansIn(const std::string& text) {
  std::vector<std::string> told;
  for (const Lane& lane : ReadTrace(text, "t.json")) {
    told.push_back(std::to_string(lane.process) + "." + std::to_string(lane.thread) + ":");
    for (const Span& span : lane.spans) {
      told.push_back(span.name + " " + std::to_string(span.depth) + " " + std::to_string(span.begin) + "-" +
                     std::to_string(span.end) + (span.closed ? "" : "?"));
    }
  }
  return told;
}

TEST(TraceSpans, nest_by_time_after_the_lanes_first) {
  EXPECT_THAT(SpansIn("[\n" + Event('B', "a", 100) + ",\n" + Event('B', "b", 110) + ",\n" + Event('E', "b", 130) +
                      ",\n" + Event('B', "c", 135) + ",\n" + Event('E', "c", 140) + ",\n" + Event('E', "a", 150)),
              ElementsAre("7.7:", "a 0 0-50", "b 1 10-30", "c 1 35-40"));
}

TEST(TraceSpans, a_closed_array_is_read_as_well) {
  EXPECT_THAT(SpansIn("[" + Event('B', "a", 1) + "," + Event('E', "a", 2) + "]"), ElementsAre("7.7:", "a 0 0-1"));
}

TEST(TraceSpans, every_thread_of_every_process_has_a_lane_in_order_of_appearance) {
  EXPECT_THAT(
      SpansIn("[" + Event('B', "a", 10, 9, 9) + "," + Event('B', "b", 11, 7, 8) + "," + Event('E', "b", 13, 7, 8) +
              "," + Event('B', "c", 12, 9, 10) + "," + Event('E', "c", 12, 9, 10) + "," + Event('E', "a", 20, 9, 9)),
      ElementsAre("9.9:", "a 0 0-10", "7.8:", "b 0 0-2", "9.10:", "c 0 0-0"));
}

TEST(TraceSpans, what_never_ended_reaches_to_the_last_event_and_is_marked) {
  EXPECT_THAT(SpansIn("[" + Event('B', "a", 1) + "," + Event('B', "b", 3) + "," + Event('B', "c", 4) + "," +
                      Event('E', "c", 9)),
              ElementsAre("7.7:", "a 0 0-8?", "b 1 2-8?", "c 2 3-8"));
}

TEST(TraceSpans, an_end_without_a_span_is_left_out) {
  EXPECT_THAT(SpansIn("[" + Event('E', "a", 1) + "," + Event('B', "b", 3) + "," + Event('E', "b", 4)),
              ElementsAre("7.7:", "b 0 2-3"));
  EXPECT_THAT(SpansIn("[" + Event('E', "a", 1)), IsEmpty());
}

TEST(TraceSpans, a_lane_tells_how_long_and_how_deep_it_is) {
  const Lane lane =
      ReadTrace("[" + Event('B', "a", 1) + "," + Event('B', "b", 3) + "," + Event('E', "b", 8), "t.json").at(0);
  EXPECT_EQ(lane.Duration(), 7);
  EXPECT_EQ(lane.Depth(), 2U);
}

TEST(TraceSpans, what_is_no_trace_is_refused_by_name) {
  for (const char* text : {"", "x", "{}", "[1]", "[{\"name\":\"a\"}]", "[\n{\"name\":\"a\",\"ph\":7,\"pid\":1",
                           "[{\"name\":\"a\",\"ph\":\"B\",\"pid\":\"1\",\"tid\":1,\"ts\":1}]"}) {
    EXPECT_EQ(ErrorOf([&] { ReadTrace(text, "t.json"); }),
              "t.json: no trace; write one with: orvelbox --trace FILE install PACKAGE")
        << text;
  }
}

}  // namespace
}  // namespace orvelbox
