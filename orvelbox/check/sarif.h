// What checks found as SARIF 2.1.0, which code review tools read.
#ifndef ORVEL_ORVELBOX_CHECK_SARIF_H_
#define ORVEL_ORVELBOX_CHECK_SARIF_H_

#include <string>
#include <vector>

#include "orvelbox/check/result.h"

namespace orvelbox {

// One log with one run: a result per duplicate, a notification per package that could not be checked.
std::string ToSarif(const std::vector<CheckedPackage>& packages);

}  // namespace orvelbox

#endif
