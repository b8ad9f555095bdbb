// clean: calls CLEAN.
#include "orvelbox/commands/package_event.h"

namespace orvelbox {

std::unique_ptr<Command> MakeClean() {
  return MakePackageEvent({"clean", "Call CLEAN for the package", "cleaned", "", kCleanHooks});
}

}  // namespace orvelbox
