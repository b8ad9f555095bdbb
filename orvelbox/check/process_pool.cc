// Children, their pipes, and the order of their results.
#include "orvelbox/check/process_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <vector>

#include "base/unique_fd.h"
#include "orvelbox/desk/output.h"
#include "platform/host/device.h"
#include "platform/host/files.h"

namespace orvelbox {
namespace {

struct Child {
  std::size_t number;
  pid_t process;
  UniqueFd pipe;
  std::string text;
};

int WaitFor(pid_t process) {
  int ending = 0;
  while (waitpid(process, &ending, 0) < 0 && errno == EINTR) {
  }
  return ending;
}

std::string ProblemOf(int ending) {
  if (WIFEXITED(ending) && WEXITSTATUS(ending) == 0) return "";
  if (WIFSIGNALED(ending)) {
    return "its process was killed by signal " + std::to_string(WTERMSIG(ending)) + " (" + strsignal(WTERMSIG(ending)) +
           ")";
  }
  return "its process ended with exit status " + std::to_string(WEXITSTATUS(ending));
}

class Pool {
 public:
  Pool(const host::HeldSignals& signals, std::size_t count, unsigned processes,
       const std::function<std::string(std::size_t)>& work)
      : signals_(signals), count_(count), processes_(processes), work_(work) {
    sigset_t set = signals.held();
    sigdelset(&set, SIGCHLD);  // of those the pipes tell
    interruption_ = UniqueFd(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!interruption_) host::ThrowFileError("the signals of the check", "watch", errno);
  }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  ~Pool() {
    for (const Child& child : children_) kill(child.process, SIGKILL);
    for (const Child& child : children_) WaitFor(child.process);
  }

  void Run(const std::function<void(std::size_t, const PieceResult&)>& done,
           const std::function<void(std::size_t)>& finished) {
    while (told_ < count_) {
      while (started_ < count_ && children_.size() < processes_) Start();
      Await();
      for (; !results_.empty() && results_.begin()->first == told_; ++told_) {
        done(told_, results_.begin()->second);
        results_.erase(results_.begin());
      }
      finished(told_ + results_.size());
    }
  }

 private:
  void Start() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) host::ThrowFileError("a pipe", "make", errno);
    UniqueFd in(ends[0]);
    UniqueFd out(ends[1]);
    FlushOutput();
    const pid_t process = fork();
    if (process < 0) host::ThrowFileError("a process", "start", errno);
    if (process == 0) RunChild(out.get());
    children_.push_back({started_++, process, std::move(in), ""});
  }

  [[noreturn]] void RunChild(int out) const {
    signals_.Restore();
    const int error = host::WriteAll(out, work_(started_));
    _exit(error == 0 ? 0 : 1);
  }

  // Waits until a child has something to say, or is through.
  void Await() {
    std::vector<pollfd> watched = {{interruption_.get(), POLLIN, 0}};
    for (const Child& child : children_) watched.push_back({child.pipe.get(), POLLIN, 0});
    if (poll(watched.data(), watched.size(), -1) < 0) {
      if (errno == EINTR) return;
      host::ThrowFileError("the processes of the check", "watch", errno);
    }
    if (watched[0].revents != 0) throw host::DeviceError("interrupted");
    for (std::size_t i = children_.size(); i > 0; --i) {
      if (watched[i].revents != 0 && !ReadFrom(children_[i - 1])) Finish(i - 1);
    }
  }

  // False at the end.
  static bool ReadFrom(Child& child) {
    std::array<char, 65536> block;
    const ssize_t length = read(child.pipe.get(), block.data(), block.size());
    if (length < 0) return errno == EINTR;
    child.text.append(block.data(), static_cast<std::size_t>(length));
    return length > 0;
  }

  void Finish(std::size_t index) {
    Child child = std::move(children_[index]);
    children_.erase(children_.begin() + static_cast<std::ptrdiff_t>(index));
    results_[child.number] = {std::move(child.text), ProblemOf(WaitFor(child.process))};
  }

  const host::HeldSignals& signals_;
  std::size_t count_;
  std::size_t processes_;
  const std::function<std::string(std::size_t)>& work_;
  UniqueFd interruption_;
  std::vector<Child> children_;
  std::map<std::size_t, PieceResult> results_;  // that have not had their turn yet
  std::size_t started_ = 0;
  std::size_t told_ = 0;
};

}  // namespace

void RunInProcesses(const host::HeldSignals& signals, std::size_t count, unsigned processes,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, const PieceResult&)>& done,
                    const std::function<void(std::size_t)>& finished) {
  Pool(signals, count, processes, work).Run(done, finished);
}

}  // namespace orvelbox
