// How far a long piece of work is, on a terminal.
#ifndef ORVEL_ORVELBOX_PROGRESS_H_
#define ORVEL_ORVELBOX_PROGRESS_H_

#include <chrono>
#include <cstddef>
#include <string>

namespace orvelbox {

// A bar of text: "checking [#####     ] 5 of 10".
std::string ProgressBar(const std::string& action, std::size_t done, std::size_t total);

// Shows the bar on standard error while that is a terminal and `wanted`; otherwise it does nothing.
class Progress {
 public:
  Progress(std::string action, std::size_t total, bool wanted);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { Clear(); }

  // Shows that `done` pieces are through; not more often than the eye can follow.
  void Show(std::size_t done);
  // Takes the bar away, so that something else can be printed.
  void Clear();

 private:
  std::string action_;
  std::size_t total_;
  bool shows_;
  bool visible_ = false;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace orvelbox

#endif
