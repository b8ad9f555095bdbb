// The words for what an operation did. Pure; the lines are still to be made printable (output.h).
#ifndef ORVEL_ORVELBOX_OPERATIONS_REPORT_H_
#define ORVEL_ORVELBOX_OPERATIONS_REPORT_H_

#include <string>

#include "orvelbox/desk/output.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

// What the hooks returned, one line per hook, with its package.
Lines DescribeHooksByPackage(const HookRun& hooks);

// What the operation did: DLLs, cache files, loader, errors. Paths below `root` (may be empty) are shown from there.
Lines DescribeEffects(const Effects& seen, const std::string& root);

// Why the install of a package under debugging failed, and what has to leave the package. Empty when the plug-in did
// not fail it for its duplicates.
Lines ExplainDebuggingFailure(const Effects& seen, const std::string& root);

// In a few words why an operation failed; empty when it did not.
std::string ReasonOfFailure(const Effects& seen);

// What the operation did and why it failed, below its headline: hooks, effects unless they were taken back, reasons.
Lines DescribeChange(const Change& change);
// The whole line about the failed operation `command`.
std::string ComplaintAbout(const std::string& command, const Change& change);

}  // namespace orvelbox

#endif
