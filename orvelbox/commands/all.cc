// The list of all commands.
#include "orvelbox/commands/all.h"

namespace orvelbox {
namespace {

constexpr const char* kPackages = "Packages";
constexpr const char* kLooking = "Looking";
constexpr const char* kHooks = "Hooks";
constexpr const char* kDevices = "Devices";

}  // namespace

// A line for each: its group in the help, and Make…, defined in the file of the command's name.
#define ORVELBOX_COMMANDS(LINE)  \
  LINE(kPackages, MakeInstall)   \
  LINE(kPackages, MakeUpgrade)   \
  LINE(kPackages, MakeUninstall) \
  LINE(kPackages, MakeCheck)     \
  LINE(kPackages, MakeTest)      \
  LINE(kLooking, MakeList)       \
  LINE(kLooking, MakeShow)       \
  LINE(kLooking, MakeWhy)        \
  LINE(kLooking, MakeLog)        \
  LINE(kLooking, MakeExplain)    \
  LINE(kLooking, MakeTrace)      \
  LINE(kHooks, MakeEvents)       \
  LINE(kHooks, MakeRemove)       \
  LINE(kHooks, MakeRecover)      \
  LINE(kHooks, MakeClean)        \
  LINE(kHooks, MakeCleanup)      \
  LINE(kHooks, MakeUndo)         \
  LINE(kDevices, MakeInit)       \
  LINE(kDevices, MakeCache)

#define ORVELBOX_DECLARE(group, make) Command make();
ORVELBOX_COMMANDS(ORVELBOX_DECLARE)

Commands AllCommands() {
  Commands all;
#define ORVELBOX_ADD(group, make) \
  all.push_back(make());          \
  all.back().SetGroup(group);
  ORVELBOX_COMMANDS(ORVELBOX_ADD)
  return all;
}

}  // namespace orvelbox
