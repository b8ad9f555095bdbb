// Texts for the result of an operation. No side effects. The lines must still be made printable (output.h).
#ifndef ORVEL_ORVELBOX_OPERATIONS_REPORT_H_
#define ORVEL_ORVELBOX_OPERATIONS_REPORT_H_

#include <string>

#include "orvelbox/desk/output.h"
#include "orvelbox/operations/effects.h"
#include "orvelbox/operations/hook_process.h"
#include "orvelbox/operations/operations.h"

namespace orvelbox {

// The hooks' results, one line per hook, with its package.
Lines DescribeHooksByPackage(const HookRun& hooks);

// What the operation changed: DLLs, cache files, loader, errors. Paths below `root` (if not empty) are relative to it.
Lines DescribeEffects(const Effects& seen, const std::string& root);

// Why the install of a package under debugging failed, and what must be removed from the package. Empty when the
// plug-in did not reject the package for its duplicates.
Lines ExplainDebuggingFailure(const Effects& seen, const std::string& root);

// A short reason why an operation failed; empty when it did not fail.
std::string ReasonOfFailure(const Effects& seen);

// The lines below the headline of a change: hooks, effects unless they were undone, reasons.
Lines DescribeChange(const Change& change);
// The error line for the failed operation `command`.
std::string ComplaintAbout(const std::string& command, const Change& change);

}  // namespace orvelbox

#endif
