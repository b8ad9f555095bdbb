// The list of all commands.
#include "orvelbox/commands/all.h"

// One line per command: its function Make…, which the file of the command's name defines.
#define ORVELBOX_COMMANDS(LINE) \
  LINE(MakeInit)                \
  LINE(MakeInstall)             \
  LINE(MakeUpgrade)             \
  LINE(MakeUninstall)           \
  LINE(MakeRemove)              \
  LINE(MakeRecover)             \
  LINE(MakeClean)               \
  LINE(MakeCleanup)             \
  LINE(MakeUndo)                \
  LINE(MakeEvents)              \
  LINE(MakeCheck)               \
  LINE(MakeTest)                \
  LINE(MakeList)                \
  LINE(MakeShow)                \
  LINE(MakeWhy)                 \
  LINE(MakeCache)               \
  LINE(MakeLog)                 \
  LINE(MakeTrace)

namespace orvelbox {

#define ORVELBOX_DECLARE(make) Command make();
ORVELBOX_COMMANDS(ORVELBOX_DECLARE)

Commands AllCommands() {
  Commands all;
#define ORVELBOX_ADD(make) all.push_back(make());
  ORVELBOX_COMMANDS(ORVELBOX_ADD)
  return all;
}

}  // namespace orvelbox
