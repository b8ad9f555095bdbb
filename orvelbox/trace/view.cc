// Reading a trace and handing it to whatever draws it.
#include "orvelbox/trace/view.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <fstream>

#include "orvelbox/desk/output.h"
#include "orvelbox/trace/picture.h"
#include "orvelbox/trace/timeline.h"
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// The columns of the terminal that standard output is; 0 when it is none.
std::size_t TerminalColumns() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void Write(const fs::path& file, const std::string& text) {
  std::ofstream stream(file);
  if (!(stream << text << std::flush)) throw host::DeviceError(file.string() + ": cannot be written; name another");
}

bool BeginsLikeATrace(const fs::path& file) {
  std::ifstream stream(file);
  const int first = stream.get();
  return stream.eof() || first == '[';
}

}  // namespace

void RequireTraceable(const fs::path& file) {
  const fs::path absolute = fs::absolute(file);
  const bool there = fs::exists(absolute);
  if (access(there ? absolute.c_str() : absolute.parent_path().c_str(), W_OK) != 0 || fs::is_directory(absolute)) {
    throw host::DeviceError(file.string() + ": no trace can be written there; name another file with --trace");
  }
  if (there && !BeginsLikeATrace(absolute)) {
    throw host::DeviceError(file.string() + ": is there and no trace; name another file with --trace");
  }
}

void ShowTrace(const fs::path& file, const fs::path& output) {
  const std::vector<Lane> lanes = ReadTrace(host::ReadFile(file), file.string());
  if (output.empty()) {
    SayAll(DrawTimeline(lanes, TerminalColumns()));
  } else {
    Write(output, output.extension() == ".svg" ? TraceSvg(lanes) : TraceHtml(lanes, file.filename().string()));
  }
}

}  // namespace orvelbox
