// trace: draws the spans that --trace recorded.
#include <sys/ioctl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/trace/spans.h"
#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// The width of the terminal on standard output; 0 when it is no terminal.
std::size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void Write(const fs::path& file, const std::string& text) {
  std::ofstream stream(file);
  if (!(stream << text << std::flush)) throw host::DeviceError(file.string() + ": cannot be written; name another");
}

std::string FaultOfPicture(const std::string& file) {
  const std::string extension = fs::path(file).extension();
  return extension == ".svg" || extension == ".html" ? "" : file + " must end in .svg or .html";
}

void Draw(const fs::path& file, const fs::path& output) {
  const std::vector<Lane> lanes = ReadTrace(host::ReadFile(file), file.string());
  if (output.empty()) {
    SayAll(DrawTimeline(lanes, TerminalColumns()));
  } else {
    Write(output, output.extension() == ".svg" ? TraceSvg(lanes) : TraceHtml(lanes, file.filename().string()));
  }
}

}  // namespace

Command MakeTrace() {
  Command command("trace", "Draw what --trace wrote: the plug-in's functions, by time",
                  "trace trace.json --output trace.html");
  Option picture = Path({"--output", "FILE", "Draw a picture (.svg) or a page for a browser (.html) into FILE"});
  picture.fault = FaultOfPicture;
  const auto& output = command.Take<std::string>(picture);
  const auto& file = command.Take<std::string>(Path({"FILE", "", "A file that --trace wrote"}));
  command.run = [&output, &file](const GlobalOptions& /*global*/) {
    Draw(file, output);
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
