// recover: notifies the plug-in that an uninstall failed.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeRecover() {
  return MakePackageEvent("recover", "Tell of a failed uninstall: RECOVERUNINSTALL, then CLEAN", "recovered",
                          " from a failed uninstall; the package stays installed", kRecoverHooks);
}

}  // namespace orvelbox
