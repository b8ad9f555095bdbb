// Threads that take one piece of work after the other.
#include "orvelbox/check/workers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <map>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/host/device_error.h"

namespace orvelbox {
namespace {

// How long a signal may wait to be noticed.
constexpr std::chrono::milliseconds kLook{100};

using Work = std::function<CheckedPackage(std::size_t)>;

bool IsInterrupted() {
  sigset_t pending;
  sigpending(&pending);
  return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1 ||
         sigismember(&pending, SIGHUP) == 1;
}

class Workers {
 public:
  Workers(std::size_t count, unsigned threads, const Work& work) : count_(count), work_(work) {
    const std::size_t wanted = std::min<std::size_t>(threads, count);
    while (threads_.size() < wanted && StartThread()) {
    }
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers() {
    stopped_ = true;
    for (std::thread& thread : threads_) thread.join();
  }

  // Hands on the results in order.
  void Deliver(const std::function<void(std::size_t, CheckedPackage)>& done,
               const std::function<void(std::size_t)>& finished) {
    for (std::size_t told = 0; told < count_;) {
      std::unique_lock lock(mutex_);
      changed_.wait_for(lock, kLook, [&] { return results_.count(told) != 0; });
      auto result = results_.extract(told);
      const std::size_t waiting = results_.size();
      lock.unlock();
      if (IsInterrupted()) throw host::DeviceError("interrupted");
      if (!result.empty()) done(told++, std::move(result.mapped()));
      finished(told + waiting);
    }
  }

 private:
  // Where no more threads are to be had, those that run do all the work.
  bool StartThread() try {
    threads_.emplace_back([this] { TakeOneAfterTheOther(); });
    return true;
  } catch (const std::system_error& error) {
    if (threads_.empty()) throw host::DeviceError(std::string("no thread can be started: ") + error.what());
    return false;
  }

  void TakeOneAfterTheOther() {
    for (std::size_t number = next_++; number < count_ && !stopped_; number = next_++) {
      CheckedPackage result = work_(number);
      const std::lock_guard lock(mutex_);
      results_.emplace(number, std::move(result));
      changed_.notify_one();
    }
  }

  std::size_t count_;
  const Work& work_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::size_t, CheckedPackage> results_;  // that have not had their turn yet
  std::vector<std::thread> threads_;
};

}  // namespace

void RunOnThreads(std::size_t count, unsigned threads, const Work& work,
                  const std::function<void(std::size_t, CheckedPackage)>& done,
                  const std::function<void(std::size_t)>& finished) {
  Workers(count, threads, work).Deliver(done, finished);
}

}  // namespace orvelbox
