// From a request to the facts about every package.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <stdexcept>
#include <thread>

#include "base/affix.h"
#include "orvelbox/check/package_checker.h"
#include "orvelbox/check/package_json.h"
#include "orvelbox/check/process_pool.h"
#include "orvelbox/desk/scratch_directory.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "orvelbox/package/source.h"
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

// What a child does: the facts about one package as JSON.
std::string CheckOne(PackageChecker& checker, const fs::path& package, const fs::path& scratch) {
  CheckedPackage result;
  try {
    WithPackage(package, PlaceAt(scratch), [&](const fs::path& directory) { result = checker.Check(directory); });
  } catch (const std::exception& error) {
    result.problem = error.what();
  }
  return ToJson(result);
}

CheckedPackage ReadResult(const std::string& package, const PieceResult& piece) {
  CheckedPackage result;
  if (piece.problem.empty()) {
    result = CheckedPackageFromJson(piece.text);
  } else {
    result.problem = package + ": could not be checked, " + piece.problem + "; please report it with the package";
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
  PackageChecker checker(CollectSet(request, device, scratch.path()), request.privileges);
  const unsigned jobs = request.jobs != 0 ? request.jobs : std::max(1U, std::thread::hardware_concurrency());
  RunInProcesses(
      signals, request.packages.size(), jobs,
      [&](std::size_t i) { return CheckOne(checker, request.packages[i], scratch.path() / std::to_string(i)); },
      [&](std::size_t i, const PieceResult& piece) { receiver.Receive(ReadResult(request.packages[i], piece)); },
      [&](std::size_t finished) { receiver.Finished(finished); });
}

}  // namespace orvelbox
