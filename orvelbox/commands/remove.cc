// remove: notifies the plug-in that an update was undone.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeRemove() {
  return MakePackageEvent("remove", "Tell that an update was taken back: REMOVED, then CLEAN", "took back an update of",
                          "; the package stays installed", kRemoveHooks);
}

}  // namespace orvelbox
