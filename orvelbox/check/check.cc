// From a request to the facts about every package, on threads that take one package after the other.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "base/affix.h"
#include "orvelbox/check/package_checker.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "orvelbox/package/source.h"
#include "platform/host/child_process.h"
#include "platform/host/device.h"
#include "platform/host/device_error.h"
#include "util/privilege_checker.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// Of an archive only these are needed; the other files count by name.
bool IsNeeded(const std::string& path) { return path == kManifestName || IsAssemblyName(path); }

UnpackPlace PlaceAt(const fs::path& directory) {
  return {directory, [directory] { RemoveTree(directory); }, IsNeeded};
}

// Adds the CoBA package, which stays unpacked at `scratch` when it is an archive.
void AddCobaPackage(const fs::path& package, const fs::path& scratch, PlatformSet& set) {
  UnpackPlace place = PlaceAt(scratch);
  place.remove = [] {};
  WithPackage(package, place, [&](const fs::path& directory) {
    const host::Package described = ReadManifest(directory).package;
    if (!IsCobaPackage(described)) {
      throw host::DeviceError(package.string() + ": is no CoBA package, no application of it has the metadata " +
                              "that makes one; leave it out");
    }
    set.coba[described.id] = {described.id, fs::canonical(directory), RootOnDevice(set, described.id)};
  });
}

PlatformSet CollectSet(const CheckRequest& request, const fs::path& device, const fs::path& scratch) {
  PlatformSet set = request.platform.empty() ? SetOfDevice(host::OpenDevice(device))
                                             : SetOfPlatform(request.platform, scratch / "list");
  for (std::size_t i = 0; i < request.coba.size(); ++i) {
    AddCobaPackage(request.coba[i], scratch / ("coba-" + std::to_string(i)), set);
  }
  return set;
}

// An error about one package becomes the problem of its result; the others go on.
CheckedPackage CheckOne(const PackageChecker& checker, const std::string& package, const fs::path& scratch,
                        const std::atomic<bool>& stopped) {
  CheckedPackage result;
  try {
    UnpackPlace place = PlaceAt(scratch);
    place.wanted = [&](const std::string& path) {
      if (stopped) throw host::DeviceError("interrupted");
      return IsNeeded(path);
    };
    WithPackage(package, place, [&](const fs::path& directory) { result = checker.Check(directory); });
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

// Threads that take one package after the other.
class Workers {
 public:
  Workers(std::size_t count, unsigned threads, const Work& work) : promises_(count), work_(work) {
    for (auto& promise : promises_) results_.push_back(promise.get_future());
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
  void Deliver(CheckReceiver& receiver) {
    for (auto& result : results_) {
      for (bool ready = false; !ready;) {
        ready = result.wait_for(kLook) == std::future_status::ready;
        if (IsInterrupted()) throw host::DeviceError("interrupted");
        if (ready) receiver.Receive(result.get());
        receiver.Finished(finished_);
      }
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
    for (std::size_t number = next_++; number < promises_.size() && !stopped_; number = next_++) {
      CheckedPackage result = work_(number, stopped_);
      ++finished_;
      promises_[number].set_value(std::move(result));
    }
  }

  std::vector<std::promise<CheckedPackage>> promises_;
  std::vector<std::future<CheckedPackage>> results_;
  const Work& work_;
  std::atomic<std::size_t> next_{0};
  std::atomic<std::size_t> finished_{0};
  std::atomic<bool> stopped_{false};
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
  const ScratchDirectory scratch;
  const PackageChecker checker(CollectSet(request, device, scratch.path()), request.privileges);
  const unsigned jobs = request.jobs != 0 ? request.jobs : std::max(1U, std::thread::hardware_concurrency());
  RunOnThreads(
      request.packages.size(), jobs,
      [&](std::size_t i, const std::atomic<bool>& stopped) {
        return CheckOne(checker, request.packages[i], scratch.path() / std::to_string(i), stopped);
      },
      receiver);
}

void RunOnThreads(std::size_t count, unsigned threads, const Work& work, CheckReceiver& receiver) {
  Workers(count, threads, work).Deliver(receiver);
}

}  // namespace orvelbox
