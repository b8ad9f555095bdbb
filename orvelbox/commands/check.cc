// check: which DLLs of packages an install would remove.
#include "orvelbox/check/check.h"

#include <algorithm>

#include "orvelbox/check/result.h"
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/progress.h"

namespace orvelbox {
namespace {

// Exit statuses.
constexpr int kNoDuplicates = 0;
constexpr int kDuplicates = 1;
constexpr int kUnreadable = 2;

constexpr const char* kTable = "table";
constexpr const char* kJson = "json";
constexpr const char* kSarif = "sarif";
constexpr const char* kMsbuild = "msbuild";

constexpr const char* kWarning = "warning";
constexpr const char* kError = "error";

// Says results as they come.
class CheckReporter : public CheckReceiver {
 public:
  // `grave`: what makes the exit status 1.
  CheckReporter(std::string format, Level grave, std::size_t packages, bool quiet)
      : format_(std::move(format)), grave_(grave), progress_("checking", packages, !quiet) {}

  void Receive(CheckedPackage package) override {
    progress_.Clear();
    if (!package.problem.empty() && format_ != kMsbuild) Complain(package.problem);
    status_ = std::max(status_, StatusOf(package));
    if (format_ == kJson) {
      WriteJson(package, SayPart);
      SayPart("\n");
    }
    if (format_ == kTable && package.problem.empty()) DescribeCheck(package, Say);
    if (format_ == kSarif) sarif_.Add(package);
    if (format_ == kMsbuild) WriteMsbuild(package, Say);
  }

  void Finished(std::size_t packages) override { progress_.Show(packages); }

  // Returns the exit status.
  int Finish() {
    progress_.Clear();
    if (format_ == kSarif) sarif_.End();
    return status_;
  }

 private:
  int StatusOf(const CheckedPackage& package) const {
    if (!package.problem.empty()) return kUnreadable;
    return LevelOf(package) >= grave_ ? kDuplicates : kNoDuplicates;
  }

  std::string format_;
  Level grave_;
  Progress progress_;
  SarifLog sarif_{SayColoured};
  int status_ = kNoDuplicates;
};

int Run(const CheckRequest& request, const std::string& format, Level grave, const GlobalOptions& global) {
  const auto device = request.platform.empty() ? ChooseDevice(global) : std::filesystem::path();
  try {
    CheckReporter reporter(format, grave, request.packages.size(), global.quiet);
    CheckPackages(request, device, reporter);
    const int status = reporter.Finish();
    return FlushOutput() ? status : kUnreadable;
  } catch (const std::exception& error) {
    if (format != kMsbuild) {
      Complain(error.what());
    } else {
      CheckedPackage nothing;
      nothing.name = request.platform.empty() ? device.string() : request.platform;
      nothing.problem = error.what();
      WriteMsbuild(nothing, Say);
    }
    return kUnreadable;
  }
}

std::vector<std::string> Uris(std::vector<std::string> privileges) {
  for (std::string& privilege : privileges) privilege = PrivilegeUri(privilege);
  return privileges;
}

}  // namespace

Command MakeCheck() {
  using Texts = std::vector<std::string>;
  Command command("check", "Say which DLLs an install would remove, and because of what",
                  "check --platform tv-assemblies shop.opk",
                  "Nothing is installed. Exit status: 0 no duplicates, 1 duplicates (see --fail-on), 2 wrong usage, or "
                  "something could not be read.\n");
  const auto& platform = command.Take<std::string>(
      Path({"--platform", "DIR|LIST",
            "Check against the platform in this directory (netcoreapp/ framework/ d.pc/ tvappapi/) or list file (paths "
            "of a device, one a line), instead of a device"}));
  const auto& coba =
      command.Take<Texts>(Path({"--coba", "PACKAGE", "A CoBA package (directory or .opk) that is there as well"}));
  const auto& privileges = command.Take<Texts>(
      {"--privilege", "URI",
       "A privilege that the packages hold beside those of their manifests: a URI, \"platform\" or \"appdebugging\""});
  const auto& format = command.Take<std::string>(
      {"--format",
       "FORMAT",
       "table, json (one line per package), sarif (2.1.0) or msbuild (warnings and errors of a build)",
       {kTable, kJson, kSarif, kMsbuild}},
      kTable);
  const auto& fail_on = command.Take<std::string>(
      {"--fail-on",
       "LEVEL",
       "End with 1 because of any duplicate (warning), or only where the install would fail (error)",
       {kWarning, kError}},
      kWarning);
  const auto& jobs = command.Take<unsigned>(
      {"--jobs", "N", "How many packages are checked at a time (one per core)", {}, false, 1024});
  const auto& packages = command.Take<Texts>(Path({"PACKAGE", "", "Directories or .opk archives of packages"}));
  command.check = [&platform, &privileges](const GlobalOptions& global) {
    Uris(privileges);
    RequireOneOf(platform, global);
  };
  command.run = [&platform, &coba, &privileges, &format, &fail_on, &jobs, &packages](const GlobalOptions& global) {
    const Level grave = fail_on == kError ? Level::kError : Level::kWarning;
    return Run({packages, platform, coba, Uris(privileges), jobs}, format, grave, global);
  };
  return command;
}

}  // namespace orvelbox
