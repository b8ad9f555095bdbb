// The one list that names every command.
#include "orvelbox/commands/all.h"

// A line for each: Make…, defined in the file of the command's name.
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
  LINE(MakeExplain)             \
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
