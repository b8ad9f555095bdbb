// cleanup: calls CLEANUP.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeCleanup() {
  return MakePackageEvent("cleanup", "Call CLEANUP, which calls CLEAN itself, for the package", "cleaned up", "",
                          kCleanupHooks);
}

}  // namespace orvelbox
