// The progress bar, and the line for work of unknown length.
#include "orvelbox/desk/progress.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <system_error>
#include <utility>

#include "platform/host/files.h"

namespace orvelbox {
namespace {

constexpr std::size_t kWidth = 30;
constexpr std::chrono::milliseconds kPause{100};
constexpr std::chrono::seconds kSecond{1};

constexpr const char* kErase = "\r\x1b[K";

Activity* current = nullptr;

void Write(const std::string& text) { host::WriteAll(STDERR_FILENO, text); }

void Draw(const std::string& line) { Write("\r" + line + "\x1b[K"); }

void Erase() { Write(kErase); }

// Runs `start` with all signals blocked, so that a thread that it starts never receives any.
template <typename Start>
void WithoutSignals(const Start& start) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  start();
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

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
  Draw(ProgressBar(action_, done, total_));
}

void Progress::Clear() {
  if (visible_) Erase();
  visible_ = false;
}

Activity::Activity(std::string action, bool wanted) : action_(std::move(action)) {
  if (!wanted || isatty(STDERR_FILENO) != 1) return;
  WithoutSignals([&] {
    try {
      thread_ = std::thread([this] { ShowWhileRunning(); });
      current = this;
    } catch (const std::system_error&) {
      // Without the thread the work continues, but shows no line.
    }
  });
}

Activity::~Activity() { Stop(); }

void Activity::CountFile() {
  if (current != nullptr) ++current->files_;
}

void Activity::End() {
  if (current != nullptr) current->Stop();
}

void Activity::PutLineAbove(const std::string& line) { Write((current == nullptr ? "" : kErase) + line + "\n"); }

void Activity::ShowWhileRunning() {
  std::unique_lock lock(mutex_);
  long seconds = 0;
  while (!stop_.wait_for(lock, kSecond, [&] { return stopped_; })) {
    Draw(action_ + ": " + std::to_string(++seconds) + " s, files written: " + std::to_string(files_));
  }
  if (seconds > 0) Erase();
}

void Activity::Stop() {
  if (!thread_.joinable()) return;
  current = nullptr;
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  stop_.notify_one();
  thread_.join();
}

}  // namespace orvelbox
