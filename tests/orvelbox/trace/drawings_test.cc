// Traces drawn as text, SVG and HTML.

#include <libxml/parser.h>

#include <memory>

#include "orvelbox/trace/spans.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

Lane Sample() {
  return {7, 7, {{"outer", 0, 4000, 0, true}, {"half", 0, 2000, 1, true}, {"blink", 3999, 3999, 1, true}}};
}

TEST(TraceTimeline, bars_lie_where_the_time_went) {
  EXPECT_THAT(DrawTimeline({Sample()}, 0),
              ElementsAre("process 7: 4.000 ms", "  begin ms   took ms",
                          "     0.000     4.000  ########################################  outer",
                          "     0.000     2.000  ####################                        half",
                          "     3.999     0.000                                         #    blink"));
}

TEST(TraceTimeline, what_never_ended_ends_in_an_arrow) {
  EXPECT_THAT(DrawTimeline({{7, 8, {{"lost", 0, 1000, 0, false}}}}, 0),
              ElementsAre("process 7, thread 8: 1.000 ms", "  begin ms   took ms",
                          "     0.000     1.000  #######################################>  lost"));
}

TEST(TraceTimeline, a_trace_of_no_duration_is_drawn) {
  EXPECT_THAT(DrawTimeline({{7, 7, {{"a", 0, 0, 0, true}}}}, 0).back(),
              "     0.000     0.000  #" + std::string(39, ' ') + "  a");
}

TEST(TraceTimeline, lines_keep_to_the_width_of_a_terminal) {
  const Lane lane{7, 7, {{std::string(200, 'x'), 0, 1, 0, true}}};
  const std::string line = DrawTimeline({lane}, 80).back();
  EXPECT_EQ(line.size(), 80U);
  EXPECT_THAT(line, testing::EndsWith("xx..."));
}

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Document Parsed(const std::string& text) {
  return {xmlReadMemory(text.data(), static_cast<int>(text.size()), "t.svg", nullptr, XML_PARSE_NONET), xmlFreeDoc};
}

TEST(TracePicture, boxes_lie_where_the_time_went) {
  const std::string svg = TraceSvg({Sample()});
  EXPECT_NE(Parsed(svg), nullptr) << svg;
  EXPECT_THAT(svg, HasSubstr("<title>outer\nfrom 0.000 ms, 4.000 ms</title>"
                             "<rect class=\"span\" x=\"10\" y=\"30\" width=\"1180\" height=\"18\""));
  EXPECT_THAT(svg, HasSubstr("<rect class=\"span\" x=\"10\" y=\"50\" width=\"590\" height=\"18\""));
  EXPECT_THAT(svg, HasSubstr("<rect class=\"span\" x=\"1189\" y=\"50\" width=\"1\" height=\"18\""));
}

TEST(TracePicture, is_a_whole_document) {
  const Lane lane{7, 7, {{"a", 0, 2000, 0, true}, {"b", 1000, 2000, 1, false}}};
  EXPECT_EQ(TraceSvg({lane}), R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 1200 80" width="1200" height="80">
<style>text{font:11px monospace}text.lane{font:bold 13px sans-serif}</style>
<rect width="100%" height="100%" fill="white"/>
<text class="lane" x="10" y="20">process 7: 2.000 ms</text>
<g><title>a
from 0.000 ms, 2.000 ms</title><rect class="span" x="10" y="30" width="1180" height="18" fill="#ffd166"/><text x="13" y="44">a</text></g>
<g><title>b
from 1.000 ms, 1.000 ms, never ended</title><rect class="span" x="600" y="50" width="590" height="18" fill="#b7e4c7" stroke="#c1121f" stroke-dasharray="3"/><text x="603" y="64">b</text></g>
</svg>
)");
}

TEST(TracePicture, labels_are_cut_between_characters) {
  const Lane lane{7, 7, {{"all", 0, 100, 0, true}, {"aéééé", 0, 3, 1, true}}};
  EXPECT_THAT(TraceSvg({lane}), HasSubstr(">aé</text>"));
}

TEST(TracePicture, labels_have_three_letters_at_least_and_stay_in_their_boxes) {
  const auto draws = [](std::int64_t pixels) {
    return TraceSvg({{7, 7, {{"all", 0, 1180, 0, true}, {"abcdef", 0, pixels, 1, true}}}});
  };
  EXPECT_THAT(draws(26), Not(HasSubstr("\">ab")));
  EXPECT_THAT(draws(27), HasSubstr(">abc</text>"));
  EXPECT_THAT(draws(33), HasSubstr(">abc</text>"));
  EXPECT_THAT(draws(34), HasSubstr(">abcd</text>"));
}

TEST(TracePicture, lanes_lie_one_below_the_other) {
  const std::string svg = TraceSvg({Sample(), Sample()});
  EXPECT_THAT(svg, HasSubstr("viewBox=\"0 0 1200 150\""));
  EXPECT_THAT(svg, HasSubstr("x=\"10\" y=\"100\" width=\"1180\""));
}

TEST(TracePicture, names_cannot_become_markup_or_control_characters) {
  const Lane lane{7, 7, {{"f<\"T&\x01\xff>", 0, 1, 0, false}}};
  const std::string svg = TraceSvg({lane});
  EXPECT_NE(Parsed(svg), nullptr) << svg;
  EXPECT_THAT(svg, HasSubstr("<title>f&lt;&quot;T&amp;\\x01\\xff&gt;\nfrom 0.000 ms, 0.001 ms, never ended</title>"));
}

TEST(TracePicture, a_page_brings_everything_along) {
  const std::string page = TraceHtml({Sample()}, "a<b");
  EXPECT_THAT(page, HasSubstr("<title>a&lt;b</title>"));
  EXPECT_THAT(page, HasSubstr(R"("duration":4000,"names":["outer")"));
  EXPECT_THAT(page, HasSubstr("<table><caption>process 7</caption><tr><th>begin ms<th>took ms"
                              "<th class=\"name\">span</tr>\n"
                              "<tr><td>0.000<td>4.000<td class=\"name\" style=\"padding-left: 0em\">outer</tr>\n"
                              "<tr><td>0.000<td>2.000<td class=\"name\" style=\"padding-left: 1em\">half</tr>\n"
                              "<tr><td>3.999<td>0.000<td class=\"name\" style=\"padding-left: 1em\">blink</tr>\n"
                              "</table>\n"));
  EXPECT_THAT(page, HasSubstr(R"(["#8ecae6","#ffd166","#b7e4c7","#f4acb7","#cdb4db","#ddb892"])"));
  EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; "));
  for (const char* reference : {"src=", "href=", "url(", "@import", "fetch(", "XMLHttpRequest", "import("}) {
    EXPECT_THAT(page, Not(HasSubstr(reference)));
  }
}

}  // namespace
}  // namespace orvelbox
