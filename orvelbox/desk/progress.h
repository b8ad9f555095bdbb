// Displays the progress of long work on a terminal.
#ifndef ORVEL_ORVELBOX_DESK_PROGRESS_H_
#define ORVEL_ORVELBOX_DESK_PROGRESS_H_

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace orvelbox {

// A bar of text: "checking [#####     ] 5 of 10".
std::string ProgressBar(const std::string& action, std::size_t done, std::size_t total);

// Shows the bar on standard error if that is a terminal and `wanted` is true; otherwise does nothing.
class Progress {
 public:
  Progress(std::string action, std::size_t total, bool wanted);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Clear(); }

  // Shows that `done` pieces are finished. Redraws at most ten times a second.
  void Show(std::size_t done);
  // Erases the bar, so that something else can be printed.
  void Clear();

 private:
  std::string action_;
  std::size_t total_;
  bool shows_;
  bool visible_ = false;
  std::chrono::steady_clock::time_point last_{};
};

// Work of unknown length. After one second, a line on standard error shows that it continues, for how long, and how
// many files it has written, if that is a terminal and `wanted` is true. Only one object may exist at a time.
class Activity {
 public:
  // `action`: a short word such as "install", so that the line fits the terminal.
  Activity(std::string action, bool wanted);
  Activity(const Activity&) = delete;
  Activity& operator=(const Activity&) = delete;
  ~Activity();

  // Counts one more written file.
  static void CountFile();
  // Erases the line for good, so that something else can be printed.
  static void End();
  // Writes a line on standard error above the activity's line.
  static void PutLineAbove(const std::string& line);

 private:
  void ShowWhileRunning();
  void Stop();

  std::string action_;
  std::atomic<std::size_t> files_{0};
  std::mutex mutex_;
  std::condition_variable stop_;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace orvelbox

#endif
