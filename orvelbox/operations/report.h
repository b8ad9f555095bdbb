// The words for what happened: observations in, lines out. Pure; the lines are still to be made printable (output.h).
#ifndef ORVEL_ORVELBOX_OPERATIONS_REPORT_H_
#define ORVEL_ORVELBOX_OPERATIONS_REPORT_H_

#include <string>
#include <vector>

#include "orvelbox/operations/effects.h"
#include "platform/host/package_store.h"

namespace orvelbox {

using Lines = std::vector<std::string>;

// What hooks returned on one line ("INSTALL returned 0, CLEAN returned 0").
std::string DescribeHooks(const HookRun& hooks);
// One line per hook, with its package.
Lines DescribeHooksByPackage(const HookRun& hooks);

// What the operation did: DLLs, cache files, loader, errors. Paths below `root` (may be empty) are shown from there.
Lines DescribeEffects(const Observation& seen, const std::string& root);

// Why the install of a package under debugging failed, and what has to leave the package. Empty when the plug-in did
// not fail it for its duplicates.
Lines ExplainDebuggingFailure(const Observation& seen, const std::string& root);

// In a few words why an operation failed; empty when it did not.
std::string ReasonOfFailure(const Observation& seen);

// The line about a cache file and the lines of its entries, for `cache`.
Lines DescribeCache(const std::string& name, const CacheText& text);

// A line per package for `list`, and all about one for `show`.
Lines DescribePackages(const std::vector<host::Package>& packages);
Lines DescribePackage(const host::Package& package);

}  // namespace orvelbox

#endif
