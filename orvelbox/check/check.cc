// From a request to the facts about every package.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>

#include "base/affix.h"
#include "orvelbox/check/package_checker.h"
#include "orvelbox/check/workers.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "orvelbox/package/source.h"
#include "platform/host/child_process.h"
#include "platform/host/device.h"
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
    AddCoba({described.id, fs::canonical(directory), RootOnDevice(set, described.id)}, set);
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
      [&](std::size_t, CheckedPackage package) { receiver.Receive(std::move(package)); },
      [&](std::size_t finished) { receiver.Finished(finished); });
}

}  // namespace orvelbox
