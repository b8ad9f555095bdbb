// show: shows the record of a package.
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/device/installed_trees.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {

Command MakeShow() {
  Command command("show", "Show what is registered about a package", "show org.example.shop");
  const auto& json = command.Take<bool>(JsonFlag());
  const auto& id = command.Take<std::string>(IdArgument());
  command.run = [&](const GlobalOptions& global) {
    const host::Package package = FindInstalled(ReadStore(OpenChosenDevice(global)), id);
    SayListing(json, PackageJson(package), DescribePackage(package));
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
