// From the options of `check` to its output.
#include "orvelbox/check/check.h"

#include <algorithm>
#include <stdexcept>
#include <thread>

#include "base/affix.h"
#include "orvelbox/check/package_checker.h"
#include "orvelbox/check/process_pool.h"
#include "orvelbox/check/result.h"
#include "orvelbox/check/sarif.h"
#include "orvelbox/check/table.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"
#include "orvelbox/desk/scratch_directory.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "orvelbox/package/source.h"
#include "platform/host/device.h"
#include "util/privilege_checker.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

constexpr int kNoDuplicates = 0;
constexpr int kDuplicates = 1;
constexpr int kUnreadable = 2;

// Of an archive only these are needed; the other files count by name.
bool IsNeeded(const std::string& path) { return path == kManifestName || IsAssemblyName(path); }

Scratch ScratchAt(const fs::path& directory) {
  return {directory, [directory] { RemoveTree(directory); }, IsNeeded};
}

// Adds the CoBA package, which stays unpacked at `scratch` when it is an archive.
void AddCobaPackage(const fs::path& package, const fs::path& scratch, PlatformSet& set) {
  Scratch place = ScratchAt(scratch);
  place.remove = [] {};
  WithPackage(package, place, [&](const fs::path& directory) {
    const host::Package described = ReadManifest(directory).package;
    if (!IsCobaPackage(described)) {
      throw host::DeviceError(package.string() + ": is no CoBA package, no application of it has the metadata " +
                              "that makes one; leave it out");
    }
    AddCoba({described.id, fs::canonical(directory), RootOnDevice(set, described.id)}, set);
    return 0;
  });
}

PlatformSet CollectSet(const CheckOptions& options, const fs::path& device, const fs::path& scratch) {
  PlatformSet set = options.platform.empty() ? SetOfDevice(host::OpenDevice(device))
                                             : SetOfPlatform(options.platform, scratch / "list");
  for (std::size_t i = 0; i < options.coba.size(); ++i) {
    AddCobaPackage(options.coba[i], scratch / ("coba-" + std::to_string(i)), set);
  }
  return set;
}

// What a child does: the facts about one package as JSON.
std::string CheckOne(PackageChecker& checker, const fs::path& package, const fs::path& scratch) {
  CheckedPackage result;
  try {
    WithPackage(package, ScratchAt(scratch), [&](const fs::path& directory) {
      result = checker.Check(directory);
      return 0;
    });
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

// Tells results as they come, or all together where the format wants it so.
class Teller {
 public:
  explicit Teller(const CheckOptions& options)
      : options_(options), progress_("checking", options.packages.size(), !options.quiet) {}

  void Tell(CheckedPackage package) {
    progress_.Clear();
    if (!package.problem.empty()) Complain(package.problem);
    status_ = std::max(status_, StatusOf(package));
    if (options_.format == CheckOptions::Format::kJson) SayColoured(ToJson(package));
    if (options_.format == CheckOptions::Format::kTable && package.problem.empty()) SayAll(DescribeCheck(package));
    if (options_.format == CheckOptions::Format::kSarif) kept_.push_back(std::move(package));
  }

  void ShowProgress(std::size_t finished) { progress_.Show(finished); }

  int Finish() {
    progress_.Clear();
    if (options_.format == CheckOptions::Format::kSarif) SayColoured(ToSarif(kept_));
    return status_;
  }

 private:
  static int StatusOf(const CheckedPackage& package) {
    if (!package.problem.empty()) return kUnreadable;
    return CountDuplicates(package) > 0 ? kDuplicates : kNoDuplicates;
  }

  const CheckOptions& options_;
  Progress progress_;
  std::vector<CheckedPackage> kept_;
  int status_ = kNoDuplicates;
};

int CheckAll(const CheckOptions& options, const fs::path& device) {
  const host::HeldSignals signals;
  const ScratchDirectory scratch;
  PackageChecker checker(CollectSet(options, device, scratch.path()), options.privileges);
  Teller teller(options);
  const unsigned jobs = options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
  RunInProcesses(
      signals, options.packages.size(), jobs,
      [&](std::size_t i) { return CheckOne(checker, options.packages[i], scratch.path() / std::to_string(i)); },
      [&](std::size_t i, const PieceResult& piece) { teller.Tell(ReadResult(options.packages[i], piece)); },
      [&](std::size_t finished) { teller.ShowProgress(finished); });
  return teller.Finish();
}

}  // namespace

std::string PrivilegeUri(const std::string& text) {
  if (text.find("://") != std::string::npos) return text;
  for (std::string uri : {kPlatformPrivilege, kAppDebuggingPrivilege}) {
    if (uri.substr(uri.rfind('/') + 1) == text) return uri;
  }
  throw std::invalid_argument(text + ": no privilege; write its URI, or \"platform\" or \"appdebugging\"");
}

int Check(const CheckOptions& options, const fs::path& device) {
  try {
    return CheckAll(options, device);
  } catch (const std::exception& error) {
    Complain(error.what());
    return kUnreadable;
  }
}

}  // namespace orvelbox
