// A child process that runs a function, and the wait for its end.
#ifndef ORVEL_PLATFORM_HOST_CHILD_PROCESS_H_
#define ORVEL_PLATFORM_HOST_CHILD_PROCESS_H_

#include <csignal>
#include <functional>

namespace host {

// Blocks SIGINT, SIGTERM and SIGHUP during its lifetime, so that this process can clean up first. A signal that arrived
// and was not passed on to a child takes effect afterwards.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals() { Restore(); }

  // Restores the earlier signal state in the calling process.
  void Restore() const;
  const sigset_t& held() const { return held_; }

 private:
  sigset_t held_;
  sigset_t mask_before_;
  struct sigaction child_action_before_;
};

// How the child ended.
struct ChildOutcome {
  bool signalled = false;  // true: ended by signal `code`; false: ended with exit status `code`
  int code = 0;
};

// Forks. The child runs `set_up` and `body`, flushes its output and exits with the result of `body`. An exception from
// `body` becomes one line on standard error and exit status 1. Until the child ends, the signals in `signals` are
// passed on to it. Throws DeviceError when the child cannot be started, or with the text of an exception from `set_up`.
ChildOutcome RunChild(const HeldSignals& signals, const std::function<void()>& set_up,
                      const std::function<int()>& body);

}  // namespace host

#endif
