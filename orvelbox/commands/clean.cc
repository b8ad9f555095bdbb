// clean: calls CLEAN.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeClean() { return MakePackageEvent("clean", "Call CLEAN for the package", "cleaned", "", kCleanHooks); }

}  // namespace orvelbox
