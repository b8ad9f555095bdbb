// show: what is registered about a package.
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/installed_trees.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {
namespace {

class Show : public Command {
 public:
  Show() : Command("show", "Show what is registered about a package", "show org.example.shop") {
    AddOption(JsonFlag(&json_));
    AddArgument(IdArgument(&id_));
  }

  int Run(const GlobalOptions& global) const override {
    const host::Package package = FindInstalled(ReadStore(OpenChosenDevice(global)), id_);
    SayListing(json_, PackageJson(package), DescribePackage(package));
    return kDone;
  }

 private:
  bool json_ = false;
  std::string id_;
};

}  // namespace

std::unique_ptr<Command> MakeShow() { return std::make_unique<Show>(); }

}  // namespace orvelbox
