// why: shows what happened to the DLLs of an installed package, and why.
#include "orvelbox/history/why.h"

#include "orvelbox/check/package_checker.h"
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"

namespace orvelbox {

Command MakeWhy() {
  Command command("why", "Say what was removed from a package, when, and why", "why org.example.shop");
  const auto& json = command.Take<bool>(JsonFlag());
  Option what = Path(IdArgument());
  what.name = "PATH|PKG";
  what.description =
      "A package id, or the path of a DLL, of its information file (…_deleted) or of a directory in a package";
  const auto& target = command.Take<std::string>(what);
  command.run = [&json, &target](const GlobalOptions& global) {
    const host::Device device = OpenChosenDevice(global);
    const WhyQuestion question = ReadQuestion(device, ReadStore(device), target);
    const Removals removals = RemovalsFor(device, question);
    CheckedPackage today;
    if (!question.path.empty()) {
      today = PackageChecker(SetOfDevice(device), {}).Check(device.OnDesk(question.package.root));
    }
    SayListing(json, WhyJson(question, removals, today), DescribeWhy(question, removals, today));
    return kDone;
  };
  return command;
}

}  // namespace orvelbox
