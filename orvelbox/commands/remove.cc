// remove: notifies the plug-in that an update was undone.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeRemove() {
  return MakePackageEvent("remove", "An update of the package was taken back: REMOVED, then CLEAN; the package stays",
                          "took back an update of", "; the package stays installed", kRemoveHooks);
}

}  // namespace orvelbox
