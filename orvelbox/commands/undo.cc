// undo: calls UNDO.
#include "orvelbox/commands/shared.h"

namespace orvelbox {

Command MakeUndo() {
  return MakePackageEvent("undo", "Call UNDO for the package", "told the plug-in to undo", "", kUndoHooks);
}

}  // namespace orvelbox
