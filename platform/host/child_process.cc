// Running a function in a child process.
#include "platform/host/child_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <iostream>
#include <string>

#include "base/unique_fd.h"
#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace host {
namespace {

void FlushOutput() {
  std::cout.flush();
  std::clog.flush();
  std::fflush(nullptr);
}

// Runs `action`. Returns the text of the exception that it throws, or nothing.
template <typename Action>
std::string FaultOf(const Action& action) {
  try {
    action();
    return "";
  } catch (const std::exception& error) {
    return *error.what() == '\0' ? "unknown error" : error.what();
  } catch (...) {
    return "unknown error";
  }
}

[[noreturn]] void RunAsChild(UniqueFd report, const std::function<void()>& set_up, const std::function<int()>& body) {
  const std::string obstacle = FaultOf(set_up);
  if (!obstacle.empty()) {
    WriteAll(report.get(), obstacle);
    _exit(1);
  }
  report.Reset();  // tells the parent that the child is set up
  int result = 1;
  const std::string fault = FaultOf([&] { result = body(); });
  if (!fault.empty()) std::cerr << "orvelbox: " << fault << std::endl;
  FlushOutput();
  _exit(result);
}

int WaitPassingSignalsOn(pid_t child, const sigset_t& held) {
  for (;;) {
    int status = 0;
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child) return status;
    if (ended < 0 && errno != EINTR) throw DeviceError("cannot wait for the child process: " + ErrorText(errno));
    // Another thread may receive the SIGCHLD, so waitpid is also called at intervals.
    const timespec patience{0, 100'000'000};
    const int signal = sigtimedwait(&held, nullptr, &patience);
    if (signal > 0 && signal != SIGCHLD) kill(child, signal);
  }
}

}  // namespace

HeldSignals::HeldSignals() {
  sigemptyset(&held_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) sigaddset(&held_, signal);
  struct sigaction wait_for_children {};
  wait_for_children.sa_handler = SIG_DFL;  // children of a process that ignores SIGCHLD leave no status
  sigaction(SIGCHLD, &wait_for_children, &child_action_before_);
  pthread_sigmask(SIG_BLOCK, &held_, &mask_before_);
}

void HeldSignals::Restore() const {
  sigaction(SIGCHLD, &child_action_before_, nullptr);
  pthread_sigmask(SIG_SETMASK, &mask_before_, nullptr);
}

ChildOutcome RunChild(const HeldSignals& signals, const std::function<void()>& set_up,
                      const std::function<int()>& body) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw DeviceError("cannot make a pipe: " + ErrorText(errno));
  const UniqueFd from_child(ends[0]);
  UniqueFd to_parent(ends[1]);
  FlushOutput();
  const pid_t child = fork();
  if (child < 0) throw DeviceError("cannot start a process: " + ErrorText(errno));
  if (child == 0) {
    signals.Restore();
    RunAsChild(std::move(to_parent), set_up, body);
  }
  to_parent.Reset();
  std::string obstacle;
  ReadToEnd(from_child.get(), obstacle);
  const int status = WaitPassingSignalsOn(child, signals.held());
  if (!obstacle.empty()) throw DeviceError(obstacle);
  if (WIFSIGNALED(status)) return {true, WTERMSIG(status)};
  return {false, WEXITSTATUS(status)};
}

}  // namespace host
