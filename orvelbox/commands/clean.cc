// clean: calls CLEAN.
#include "orvelbox/commands/changing_command.h"

namespace orvelbox {

Command MakeClean() { return MakePackageEvent("clean", "Call CLEAN for the package", "cleaned", "", kCleanHooks); }

}  // namespace orvelbox
