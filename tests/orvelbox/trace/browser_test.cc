// Drawn traces in a browser without a window: what it makes of the page, and what there is to see.
#include <gmock/gmock.h>
#include <unistd.h>

#include "orvelbox/trace/spans.h"
#include "tests/orvelbox/trace/png.h"
#include "tests/support/command.h"
#include "tests/support/files.h"

namespace orvelbox {
namespace {

using testing::HasSubstr;

class TraceInBrowser : public testing::Test {
 protected:
  void SetUp() override {
    if (support::OutputOf("command -v chromium").find("chromium") == std::string::npos) {
      GTEST_SKIP() << "no chromium here; install it with: make test-heavy";
    }
  }

  // Lets the browser open `file` of this directory with the options; returns what it prints.
  std::string Browse(const std::string& options, const std::string& file) const {
    const std::string sandbox = geteuid() == 0 ? " --no-sandbox" : "";
    return support::OutputOf("cd '" + dir_.path().string() + "' && HOME=\"$PWD\" timeout 100 chromium --headless" +
                             sandbox +
                             " --disable-gpu --disable-dev-shm-usage --user-data-dir=\"$PWD/profile\" "
                             "--force-color-profile=srgb --hide-scrollbars --window-size=1400,600 " +
                             options + " \"file://$PWD/" + file + "\" 2>browser.log");
  }

  e2e::Picture Photograph(const std::string& file) const {
    Browse("--screenshot=picture.png", file);
    return e2e::ReadPng(support::ReadFile(dir_ / "picture.png"));
  }

  support::TempDir dir_;
};

// The colour of the box with this name.
std::string ColourOf(const std::string& svg, const std::string& name) {
  const std::size_t fill = svg.find("fill=\"", svg.find("<title>" + name)) + 6;
  return svg.substr(fill, 7);
}

// The unit "plugin" takes all the time, and "files" half of it.
std::vector<Lane> Sample() {
  return {{7, 7, {{"plugin(1) int outer<int>()", 0, 4000, 0, true}, {"files(2) void inner()", 0, 2000, 1, true}}}};
}

TEST_F(TraceInBrowser, a_page_shows_boxes_as_long_as_the_time_they_took) {
  const std::string page = TraceHtml(Sample(), "trace.json");
  support::WriteFile(dir_ / "t.html", page);
  const e2e::Picture picture = Photograph("t.html");
  const double outer = static_cast<double>(picture.Count(ColourOf(page, "plugin")));
  const double inner = static_cast<double>(picture.Count(ColourOf(page, "files")));
  EXPECT_GT(outer, 1180 * 18 * 0.8) << "the letters on the boxes take little";
  EXPECT_NEAR(inner / outer, 0.5, 0.1);
}

TEST_F(TraceInBrowser, a_picture_shows_the_same_boxes) {
  const std::string svg = TraceSvg(Sample());
  support::WriteFile(dir_ / "t.svg", svg);
  EXPECT_GT(Photograph("t.svg").Count(ColourOf(svg, "plugin")), 1180 * 18 * 0.8);
}

TEST_F(TraceInBrowser, a_page_is_read_as_it_is_meant) {
  support::WriteFile(dir_ / "t.html", TraceHtml(Sample(), "trace.json"));
  const std::string dom = Browse("--dump-dom", "t.html");
  EXPECT_THAT(dom, HasSubstr("<title>trace.json</title>"));
  EXPECT_THAT(dom, HasSubstr("<title>plugin(1) int outer&lt;int&gt;()\nfrom 0.000 ms, 4.000 ms</title>"));
  EXPECT_THAT(dom, HasSubstr("padding-left: 1em\">files(2) void inner()</td></tr>"));
}

}  // namespace
}  // namespace orvelbox
