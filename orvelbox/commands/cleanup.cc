// cleanup: calls CLEANUP.
#include "orvelbox/commands/package_event.h"

namespace orvelbox {

std::unique_ptr<Command> MakeCleanup() {
  return MakePackageEvent(
      {"cleanup", "Call CLEANUP, which calls CLEAN itself, for the package", "cleaned up", "", kCleanupHooks});
}

}  // namespace orvelbox
