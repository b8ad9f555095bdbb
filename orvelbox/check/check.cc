// From a request to the facts about every package.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

#include "orvelbox/check/package_checker.h"
#include "orvelbox/check/workers.h"
#include "platform/host/child_process.h"
#include "platform/host/device.h"
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
  AddCoba({described.id, RootOnDevice(set, described.id), opened.files}, set);
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
  RunOnThreads(
      request.packages.size(), jobs, [&](std::size_t i) { return CheckOne(checker, request.packages[i]); },
      [&](std::size_t, CheckedPackage package) { receiver.Receive(std::move(package)); },
      [&](std::size_t finished) { receiver.Finished(finished); });
}

}  // namespace orvelbox
