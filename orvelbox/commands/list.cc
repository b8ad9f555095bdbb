// list: the installed packages.
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {
namespace {

class List : public Command {
 public:
  List() : Command("list", "List the installed packages", "list --json") { AddOption(JsonFlag(&json_)); }

  int Run(const GlobalOptions& global) const override {
    const std::vector<host::Package> packages = ReadStore(OpenChosenDevice(global)).List();
    SayListing(json_, PackagesJson(packages), DescribePackages(packages));
    return kDone;
  }

 private:
  bool json_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeList() { return std::make_unique<List>(); }

}  // namespace orvelbox
