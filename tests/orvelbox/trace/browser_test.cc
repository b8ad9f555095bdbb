// Drawn traces in a headless browser: the document and the picture that it makes of the page.
#include <png.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <stdexcept>

#include "orvelbox/trace/spans.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/command.h"

namespace orvelbox {
namespace {

using Pixel = std::array<std::uint8_t, 3>;  // red, green, blue

// The pixels of a PNG picture, row by row.
std::vector<Pixel> ReadPng(const std::string& bytes) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0)
    throw std::runtime_error(image.message);
  image.format = PNG_FORMAT_RGB;
  std::vector<Pixel> pixels(std::size_t{image.width} * image.height);
  if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) throw std::runtime_error(image.message);
  return pixels;
}

class TraceInBrowser : public DirectoryTest {
 protected:
  void SetUp() override {
    if (support::OutputOf("command -v chromium").find("chromium") == std::string::npos) {
      GTEST_SKIP() << "no chromium here; install it with: make test-heavy";
    }
  }

  // Opens `file` of this directory in the browser with the options. Returns the browser's output.
  std::string Browse(const std::string& options, const std::string& file) const {
    const std::string sandbox = geteuid() == 0 ? " --no-sandbox" : "";
    return support::OutputOf("cd '" + dir_.path().string() + "' && HOME=\"$PWD\" timeout 100 chromium --headless" +
                             sandbox +
                             " --disable-gpu --disable-dev-shm-usage --user-data-dir=\"$PWD/profile\" "
                             "--force-color-profile=srgb --hide-scrollbars --window-size=1400,600 " +
                             options + " \"file://$PWD/" + file + "\" 2>browser.log");
  }

  // How many pixels of each of the colours, "#rrggbb", the browser shows of `file`.
  std::vector<double> Count(const std::string& file, const std::vector<std::string>& colours,
                            const std::string& options = "") const {
    Browse(options + "--screenshot=picture.png", file);
    const std::vector<Pixel> pixels = ReadPng(ReadFile(dir_ / "picture.png"));
    std::vector<double> counts;
    for (const std::string& colour : colours) {
      const auto number = std::stoul(colour.substr(1), nullptr, 16);
      const Pixel wanted = {static_cast<std::uint8_t>(number >> 16), static_cast<std::uint8_t>(number >> 8),
                            static_cast<std::uint8_t>(number)};
      counts.push_back(static_cast<double>(std::count(pixels.begin(), pixels.end(), wanted)));
    }
    return counts;
  }

  // What `script` tells about the page of the lanes, whose first picture is `picture`, each followed by "|".
  std::string Told(const std::vector<Lane>& lanes, const std::string& script) const {
    WriteFile(dir_ / "t.html", TraceHtml(lanes, "trace.json") + R"(<pre id="told"></pre><script>
      const [canvas, picture] = pictures.entries().next().value;
      const press = (key) => canvas.dispatchEvent(new KeyboardEvent("keydown", {key}));
      const finish = () => canvas.getContext("2d").getImageData(0, 0, 1, 1);
      const tell = (text) => document.getElementById("told").textContent += text + "|";
)" + script + "</script>");
    const std::string dom = Browse("--dump-dom", "t.html");
    const std::string begin = "<pre id=\"told\">";
    const std::size_t at = dom.find(begin);
    return at == std::string::npos ? dom : dom.substr(at + begin.size(), dom.find("</pre>", at) - at - begin.size());
  }
};

// A trace in which the unit "plugin" takes all the time, and "files" half of it.
std::vector<Lane> Sample() {
  return {{7, 7, {{"plugin(1) int outer<int>()", 0, 4000, 0, true}, {"files(2) void inner()", 0, 2000, 1, true}}}};
}

std::string ColourOf(std::size_t span) { return kSpanColours[orvelbox::ColourOf(Sample()[0].spans[span])]; }

TEST_F(TraceInBrowser, a_page_shows_boxes_as_long_as_the_time_they_took) {
  WriteFile(dir_ / "t.html", TraceHtml(Sample(), "trace.json"));
  const std::vector<double> counts = Count("t.html", {ColourOf(0), ColourOf(1)});
  EXPECT_GT(counts[0], 1180 * 18 * 0.8) << "the letters on the boxes take little";
  EXPECT_NEAR(counts[1] / counts[0], 0.5, 0.1);
}

TEST_F(TraceInBrowser, a_page_is_light_or_dark_as_its_reader_likes) {
  WriteFile(dir_ / "t.html", TraceHtml(Sample(), "trace.json"));
  EXPECT_GT(Count("t.html", {"#ffffff"})[0], 1400 * 300);
  EXPECT_GT(Count("t.html", {"#16181d"}, "--blink-settings=preferredColorScheme=0 ")[0], 1400 * 300);
}

TEST_F(TraceInBrowser, a_picture_shows_the_same_boxes) {
  WriteFile(dir_ / "t.svg", TraceSvg(Sample()));
  EXPECT_GT(Count("t.svg", {ColourOf(0)})[0], 1180 * 18 * 0.8);
}

TEST_F(TraceInBrowser, a_page_is_read_as_it_is_meant) {
  WriteFile(dir_ / "t.html", TraceHtml({{7, 7, {{"f</script><b>", 0, 1000, 0, true}}}}, "trace.json"));
  const std::string dom = Browse("--dump-dom", "t.html");
  EXPECT_THAT(dom, HasSubstr("<title>trace.json</title>"));
  EXPECT_THAT(dom, HasSubstr("<h2>process 7: 1.000 ms</h2><canvas"));
  EXPECT_THAT(dom, HasSubstr("padding-left: 0em\">f&lt;/script&gt;&lt;b&gt;</td></tr>"));
}

TEST_F(TraceInBrowser, a_page_can_be_worked_with_by_keys) {
  const std::string told = Told(Sample(), R"(
    press("ArrowDown"); tell(status.textContent);
    press("ArrowDown"); tell(status.textContent);
    press("Enter"); tell(picture.from + " to " + picture.to);
    press("-"); tell(picture.from < 0 || picture.to > 4000 ? "beyond the lane" : "within the lane");
    press("ArrowUp"); tell(status.textContent);
    press("0"); tell(picture.from + " to " + picture.to);
    press("+"); press("ArrowRight"); tell(picture.from > 0 ? "moved" : "still");)");
  EXPECT_EQ(told,
            "plugin(1) int outer&lt;int&gt;(): from 0.000 ms, 4.000 ms|files(2) void inner(): from 0.000 ms, 2.000 ms|"
            "0 to 2000|within the lane|plugin(1) int outer&lt;int&gt;(): from 0.000 ms, 4.000 ms|0 to 4000|moved|");
}

TEST_F(TraceInBrowser, twenty_thousand_spans_are_drawn_and_zoomed_without_delay) {
  Lane lane{7, 7, {}};
  for (std::int64_t i = 0; i < 20'000; ++i) {
    lane.spans.push_back(
        {"unit" + std::to_string(i % 50) + "(1) f()", i, i + 5, static_cast<std::size_t>(i % 5), true});
  }
  const std::string told = Told({lane}, R"(
    picture.draw(); finish(); tell(performance.now() < 2000 ? "drawn" : "drawn after " + performance.now() + " ms");
    for (const key of ["+", "+", "ArrowRight", "-"]) {
      const begin = performance.now();
      press(key); finish();
      const took = performance.now() - begin;
      tell(took < 100 ? "quick" : key + " took " + took + " ms");
    })");
  EXPECT_EQ(told, "drawn|quick|quick|quick|quick|");
}

}  // namespace
}  // namespace orvelbox
