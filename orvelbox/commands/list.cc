// list: lists the installed packages.
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {

Command MakeList() {
  Command command("list", "List the installed packages", "list --json");
  const auto& json = command.Take<bool>(JsonFlag());
  command.run = [&json](const GlobalOptions& global) {
    const std::vector<host::Package> packages = ReadStore(OpenChosenDevice(global)).List();
    SayListing(json, PackagesJson(packages), DescribePackages(packages));
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
