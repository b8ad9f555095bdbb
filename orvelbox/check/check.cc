// From a request to the facts about every package, on threads that take one package after the other.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "orvelbox/check/package_checker.h"
#include "orvelbox/desk/output.h"
#include "platform/host/child_process.h"
#include "platform/host/device.h"
#include "platform/host/device_error.h"
#include "util/privilege_checker.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

void AddCobaPackage(const fs::path& package, PlatformSet& set) {
  const OpenedPackage opened = OpenPackage(package);
  const host::Package& described = opened.manifest.package;
  if (!IsCobaPackage(described)) {
    throw host::DeviceError(package.string() + ": is no CoBA package, no application of it has the metadata " +
                            "that makes one; leave it out");
  }
  set.coba[described.id] = {described.id, RootOnDevice(set, described.id), opened.files};
}

PlatformSet CollectSet(const CheckRequest& request, const fs::path& device) {
  PlatformSet set = request.platform.empty() ? SetOfDevice(host::OpenDevice(device)) : SetOfPlatform(request.platform);
  for (const std::string& package : request.coba) AddCobaPackage(package, set);
  return set;
}

// An error about one package becomes the problem of its result; the others go on.
CheckedPackage CheckOne(const PackageChecker& checker, const std::string& package) {
  CheckedPackage result;
  try {
    result = checker.Check(package);
  } catch (const host::DeviceError& error) {
    result.problem = error.what();
  } catch (const std::exception& error) {
    result.problem = package + ": could not be checked, " + error.what() + "; please report it with the package";
  }
  result.name = package;
  return result;
}

// How long a signal may wait to be noticed.
constexpr std::chrono::milliseconds kLook{100};

// Signals that the process ignores (under nohup, say) wait as well while they are held.
bool IsInterrupted() {
  sigset_t pending;
  sigpending(&pending);
  const auto interrupts = [&](int signal) {
    struct sigaction action {};
    return sigismember(&pending, signal) == 1 && sigaction(signal, nullptr, &action) == 0 &&
           action.sa_handler != SIG_IGN;
  };
  return interrupts(SIGINT) || interrupts(SIGTERM) || interrupts(SIGHUP);
}

// Results that wait for an earlier one take memory: so many packages are begun for each thread before the first of them
// is delivered, and none while the waiting ones have so many DLLs.
constexpr std::size_t kAhead = 4;
constexpr std::size_t kMostWaitingDlls = 20'000;

// Threads that take one package after the other.
class Workers {
 public:
  Workers(std::size_t count, unsigned threads, const Work& work)
      : promises_(count), work_(work), ahead_(kAhead * threads) {
    for (auto& promise : promises_) results_.push_back(promise.get_future());
    const std::size_t wanted = std::min<std::size_t>(threads, count);
    threads_.reserve(wanted);
    while (threads_.size() < wanted && StartThread()) {
    }
  }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers() {
    Update([this] { stopped_ = true; });
    for (std::thread& thread : threads_) thread.join();
  }

  // Hands on the results in order.
  void Deliver(CheckReceiver& receiver) {
    for (auto& result : results_) {
      for (bool ready = false; !ready;) {
        ready = result.wait_for(kLook) == std::future_status::ready;
        if (IsInterrupted()) Interrupt();
        if (ready) DeliverOne(result.get(), receiver);
        receiver.Finished(finished_);
      }
    }
  }

 private:
  // The signal ends the process on the way out: what was said is not to be lost.
  [[noreturn]] static void Interrupt() {
    FlushOutput();
    throw host::DeviceError("interrupted");
  }

  void DeliverOne(CheckedPackage result, CheckReceiver& receiver) {
    const std::size_t dlls = result.dlls.size();
    receiver.Receive(std::move(result));
    Update([&] {
      ++delivered_;
      waiting_dlls_ -= dlls;
    });
  }

  // If no further thread can be started, those that run do all the work.
  bool StartThread() try {
    threads_.emplace_back([this] { TakeOneAfterTheOther(); });
    return true;
  } catch (const std::system_error& error) {
    if (threads_.empty()) throw host::DeviceError(std::string("no thread can be started: ") + error.what());
    return false;
  }

  void TakeOneAfterTheOther() {
    for (std::size_t number = next_++; number < promises_.size() && MayBegin(number); number = next_++) {
      CheckedPackage result = work_(number);
      ++finished_;
      Update([&] { waiting_dlls_ += result.dlls.size(); });
      promises_[number].set_value(std::move(result));
    }
  }

  bool MayBegin(std::size_t number) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] {
      const bool has_room = number < delivered_ + ahead_ && waiting_dlls_ < kMostWaitingDlls;
      return stopped_ || number == delivered_ || has_room;
    });
    return !stopped_;
  }

  // Lets the threads see the change.
  template <typename Change>
  void Update(Change change) {
    const std::lock_guard lock(mutex_);
    change();
    changed_.notify_all();
  }

  std::vector<std::promise<CheckedPackage>> promises_;
  std::vector<std::future<CheckedPackage>> results_;
  const Work& work_;
  const std::size_t ahead_;
  std::atomic<std::size_t> next_{0};
  std::atomic<std::size_t> finished_{0};
  std::mutex mutex_;
  std::condition_variable changed_;
  std::size_t delivered_ = 0;
  std::size_t waiting_dlls_ = 0;  // in results that are not delivered yet
  bool stopped_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace

std::string PrivilegeUri(const std::string& text) {
  if (text.find("://") != std::string::npos) return text;
  for (std::string uri : {kPlatformPrivilege, kAppDebuggingPrivilege}) {
    if (uri.substr(uri.rfind('/') + 1) == text) return uri;
  }
  throw std::invalid_argument(text + ": no privilege; write its URI, or \"platform\" or \"appdebugging\"");
}

void CheckPackages(const CheckRequest& request, const fs::path& device, CheckReceiver& receiver) {
  const host::HeldSignals signals;
  const PackageChecker checker(CollectSet(request, device), request.privileges);
  const unsigned jobs = request.jobs != 0 ? request.jobs : std::max(1U, std::thread::hardware_concurrency());
  const auto check = [&](std::size_t number) { return CheckOne(checker, request.packages[number]); };
  RunOnThreads(request.packages.size(), jobs, check, receiver);
}

void RunOnThreads(std::size_t count, unsigned threads, const Work& work, CheckReceiver& receiver) {
  Workers(count, threads, work).Deliver(receiver);
}

}  // namespace orvelbox
