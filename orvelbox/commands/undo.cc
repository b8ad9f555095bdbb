// undo: calls UNDO.
#include "orvelbox/commands/package_event.h"

namespace orvelbox {

std::unique_ptr<Command> MakeUndo() {
  return MakePackageEvent({"undo", "Call UNDO for the package", "told the plug-in to undo", "", kUndoHooks});
}

}  // namespace orvelbox
