// check: which DLLs of packages an install would remove.
#include "orvelbox/check/check.h"

#include <algorithm>

#include "orvelbox/check/formats.h"
#include "orvelbox/commands/device_choice.h"
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

// Says results as they come, or all together where the format wants it so.
class CheckReporter : public CheckReceiver {
 public:
  CheckReporter(std::string format, std::size_t packages, bool quiet)
      : format_(std::move(format)), progress_("checking", packages, !quiet) {}

  void Receive(CheckedPackage package) override {
    progress_.Clear();
    if (!package.problem.empty()) Complain(package.problem);
    status_ = std::max(status_, StatusOf(package));
    if (format_ == kJson) SayColoured(ToJson(package));
    if (format_ == kTable && package.problem.empty()) SayAll(DescribeCheck(package));
    if (format_ == kSarif) kept_.push_back(std::move(package));
  }

  void Finished(std::size_t packages) override { progress_.Show(packages); }

  // Returns the exit status.
  int Finish() {
    progress_.Clear();
    if (format_ == kSarif) SayColoured(ToSarif(kept_));
    return status_;
  }

 private:
  static int StatusOf(const CheckedPackage& package) {
    if (!package.problem.empty()) return kUnreadable;
    return CountDuplicates(package) > 0 ? kDuplicates : kNoDuplicates;
  }

  std::string format_;
  Progress progress_;
  std::vector<CheckedPackage> kept_;
  int status_ = kNoDuplicates;
};

class Check : public Command {
 public:
  Check()
      : Command("check",
                "Say which DLLs of packages an install would remove, and because of what; nothing is installed",
                "check --platform tv-assemblies shop.opk",
                "Exit status: 0 no duplicates, 1 duplicates, 2 wrong usage, or something could not be read.\n") {
    AddOption({"--platform", "DIR|LIST",
               "Check against the platform in this directory (netcoreapp/ framework/ d.pc/ tvappapi/) or list file "
               "(paths of a device, one a line), instead of a device",
               &request_.platform});
    AddOption({"--coba", "PACKAGE", "A CoBA package (directory or .opk) that is there as well", &request_.coba});
    AddOption({"--privilege", "URI",
               "A privilege that the packages hold beside those of their manifests: a URI, \"platform\" or "
               "\"appdebugging\"",
               &request_.privileges});
    AddOption({"--format",
               "FORMAT",
               "table, json (one line per package) or sarif (2.1.0)",
               &format_,
               {kTable, kJson, kSarif}});
    AddOption({"--jobs", "N", "How many packages are checked at a time (one per core)", Number{&request_.jobs, 1024}});
    AddArgument({"PACKAGE", "", "Directories or .opk archives of packages", &request_.packages});
  }

  void Accept(const GlobalOptions& global) override {
    for (std::string& privilege : request_.privileges) privilege = PrivilegeUri(privilege);
    RequireOneOf(request_.platform, global);
  }

  int Run(const GlobalOptions& global) const override {
    const auto device = request_.platform.empty() ? ChooseDevice(global) : std::filesystem::path();
    try {
      CheckReporter reporter(format_, request_.packages.size(), global.quiet);
      CheckPackages(request_, device, reporter);
      return reporter.Finish();
    } catch (const std::exception& error) {
      Complain(error.what());
      return kUnreadable;
    }
  }

 private:
  CheckRequest request_;
  std::string format_ = kTable;
};

}  // namespace

std::unique_ptr<Command> MakeCheck() { return std::make_unique<Check>(); }

}  // namespace orvelbox
