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

bool IsInterrupted() {
  sigset_t pending;
  sigpending(&pending);
  return sigismember(&pending, SIGINT) == 1 || sigismember(&pending, SIGTERM) == 1 ||
         sigismember(&pending, SIGHUP) == 1;
}

// How many packages are begun for each thread before the first of them is delivered: results that wait take memory.
constexpr std::size_t kAhead = 4;

// Threads that take one package after the other.
class Workers {
 public:
  Workers(std::size_t count, unsigned threads, const Work& work)
      : promises_(count), work_(work), ahead_(kAhead * threads) {
    for (auto& promise : promises_) results_.push_back(promise.get_future());
    const std::size_t wanted = std::min<std::size_t>(threads, count);
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
        if (IsInterrupted()) throw host::DeviceError("interrupted");
        if (ready) receiver.Receive(result.get());
        receiver.Finished(finished_);
      }
      Update([this] { ++delivered_; });
    }
  }

 private:
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
      promises_[number].set_value(std::move(result));
    }
  }

  bool MayBegin(std::size_t number) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || number < delivered_ + ahead_; });
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
