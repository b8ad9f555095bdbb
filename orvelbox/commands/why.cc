// why: what happened to the DLLs of an installed package, and because of what.
#include "orvelbox/history/why.h"

#include "orvelbox/check/package_checker.h"
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"

namespace orvelbox {
namespace {

class Why : public Command {
 public:
  Why()
      : Command("why", "Say what was removed from an installed package, when, and because of what",
                "why org.example.shop") {
    AddOption(JsonFlag(&json_));
    AddArgument(
        {"PATH|PKG", "",
         "A package id, or the path of a DLL, of its information file (…_deleted) or of a directory in a package",
         &target_});
  }

  int Run(const GlobalOptions& global) const override {
    const host::Device device = OpenChosenDevice(global);
    const WhyQuestion question = ReadQuestion(device, ReadStore(device), target_);
    const std::vector<Removal> removals = AskedFor(question, RemovalsOf(device, question.package));
    CheckedPackage today;
    if (!question.path.empty()) {
      today = PackageChecker(SetOfDevice(device), {}).Check(device.OnDesk(question.package.root));
    }
    SayListing(json_, WhyJson(question, removals, today), DescribeWhy(question, removals, today));
    return kDone;
  }

 private:
  bool json_ = false;
  std::string target_;
};

}  // namespace

std::unique_ptr<Command> MakeWhy() { return std::make_unique<Why>(); }

}  // namespace orvelbox
