// recover: notifies the plug-in that an uninstall failed.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeRecover() {
  return MakePackageEvent("recover",
                          "An uninstall of the package failed: RECOVERUNINSTALL, then CLEAN; the package stays",
                          "recovered", " from a failed uninstall; the package stays installed", kRecoverHooks);
}

}  // namespace orvelbox
