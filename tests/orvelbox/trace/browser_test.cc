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

  // The number of pixels of each colour, "#rrggbb", when the browser shows `file`.
  std::vector<double> Count(const std::string& file, const std::vector<std::string>& colours) const {
    Browse("--screenshot=picture.png", file);
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
};

// The colour of the box with this name.
std::string ColourOf(const std::string& svg, const std::string& name) {
  const std::size_t fill = svg.find("fill=\"", svg.find("<title>" + name)) + 6;
  return svg.substr(fill, 7);
}

// A trace in which the unit "plugin" takes all the time, and "files" half of it.
std::vector<Lane> Sample() {
  return {{7, 7, {{"plugin(1) int outer<int>()", 0, 4000, 0, true}, {"files(2) void inner()", 0, 2000, 1, true}}}};
}

TEST_F(TraceInBrowser, a_page_shows_boxes_as_long_as_the_time_they_took) {
  const std::string page = TraceHtml(Sample(), "trace.json");
  WriteFile(dir_ / "t.html", page);
  const std::vector<double> counts = Count("t.html", {ColourOf(page, "plugin"), ColourOf(page, "files")});
  EXPECT_GT(counts[0], 1180 * 18 * 0.8) << "the letters on the boxes take little";
  EXPECT_NEAR(counts[1] / counts[0], 0.5, 0.1);
}

TEST_F(TraceInBrowser, a_picture_shows_the_same_boxes) {
  const std::string svg = TraceSvg(Sample());
  WriteFile(dir_ / "t.svg", svg);
  EXPECT_GT(Count("t.svg", {ColourOf(svg, "plugin")})[0], 1180 * 18 * 0.8);
}

TEST_F(TraceInBrowser, a_page_is_read_as_it_is_meant) {
  WriteFile(dir_ / "t.html", TraceHtml(Sample(), "trace.json"));
  const std::string dom = Browse("--dump-dom", "t.html");
  EXPECT_THAT(dom, HasSubstr("<title>trace.json</title>"));
  EXPECT_THAT(dom, HasSubstr("<title>plugin(1) int outer&lt;int&gt;()\nfrom 0.000 ms, 4.000 ms</title>"));
  EXPECT_THAT(dom, HasSubstr("padding-left: 1em\">files(2) void inner()</td></tr>"));
}

}  // namespace
}  // namespace orvelbox
