// The progress bar.
#include "orvelbox/progress.h"

#include <unistd.h>

#include <algorithm>

#include "platform/host/files.h"

namespace orvelbox {
namespace {

constexpr std::size_t kWidth = 30;
constexpr std::chrono::milliseconds kPause{100};

void Write(const std::string& text) { host::WriteAll(STDERR_FILENO, text); }

}  // namespace

std::string ProgressBar(const std::string& action, std::size_t done, std::size_t total) {
  const std::size_t filled = total == 0 ? kWidth : std::min(kWidth, done * kWidth / total);
  return action + " [" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " + std::to_string(done) +
         " of " + std::to_string(total);
}

Progress::Progress(std::string action, std::size_t total, bool wanted)
    : action_(std::move(action)), total_(total), shows_(wanted && isatty(STDERR_FILENO) == 1) {}

void Progress::Show(std::size_t done) {
  const auto now = std::chrono::steady_clock::now();
  if (!shows_ || now - last_ < kPause) return;
  last_ = now;
  visible_ = true;
  Write("\r" + ProgressBar(action_, done, total_) + "\x1b[K");
}

void Progress::Clear() {
  if (visible_) Write("\r\x1b[K");
  visible_ = false;
}

}  // namespace orvelbox
