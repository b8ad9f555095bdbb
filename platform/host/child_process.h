// A child process that runs a function, supervised to its end.
#ifndef ORVEL_PLATFORM_HOST_CHILD_PROCESS_H_
#define ORVEL_PLATFORM_HOST_CHILD_PROCESS_H_

#include <csignal>
#include <functional>

namespace host {

// Holds back SIGINT, SIGTERM and SIGHUP while it lives, so that this process can clean up first; what arrived and was
// not passed on to a child then takes effect.
class HeldSignals {
 public:
  HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;
  ~HeldSignals() { Restore(); }

  // Gives the calling process the signal state from before.
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

// Forks; the child runs `set_up`, then `body`, and ends with the latter's result as its exit status, all its output
// flushed. An exception that leaves `body` becomes one line on standard error and exit status 1. Meanwhile the signals
// of `signals` are passed on to the child. Throws DeviceError when the child cannot be made, or with the text of the
// exception that left `set_up`.
ChildOutcome RunChild(const HeldSignals& signals, const std::function<void()>& set_up,
                      const std::function<int()>& body);

}  // namespace host

#endif
