// What a check found about a package as JSON for programs.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_JSON_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_JSON_H_

#include <string>

#include "orvelbox/check/result.h"

namespace orvelbox {

// Everything as one line.
std::string ToJson(const CheckedPackage& package);

}  // namespace orvelbox

#endif
