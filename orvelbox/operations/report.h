// The words for what happened: observations in, lines out. Pure; the lines are still to be made printable (output.h).
#ifndef ORVEL_ORVELBOX_OPERATIONS_REPORT_H_
#define ORVEL_ORVELBOX_OPERATIONS_REPORT_H_

#include <string>

#include "orvelbox/desk/lines.h"
#include "orvelbox/operations/effects.h"

namespace orvelbox {

// What hooks returned on one line ("INSTALL returned 0, CLEAN returned 0").
std::string DescribeHooks(const HookRun& hooks);
// One line per hook, with its package.
Lines DescribeHooksByPackage(const HookRun& hooks);

// What the operation did: DLLs, cache files, loader, errors. Paths below `root` (may be empty) are shown from there.
Lines DescribeEffects(const Effects& seen, const std::string& root);

// Why the install of a package under debugging failed, and what has to leave the package. Empty when the plug-in did
// not fail it for its duplicates.
Lines ExplainDebuggingFailure(const Effects& seen, const std::string& root);

// In a few words why an operation failed; empty when it did not.
std::string ReasonOfFailure(const Effects& seen);

}  // namespace orvelbox

#endif
