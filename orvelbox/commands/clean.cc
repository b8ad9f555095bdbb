// clean: calls CLEAN.
#include "orvelbox/commands/changing_command.h"

namespace orvelbox {

std::unique_ptr<Command> MakeClean() {
  return MakePackageEvent({"clean", "Call CLEAN for the package", "cleaned", "", kCleanHooks});
}

}  // namespace orvelbox
