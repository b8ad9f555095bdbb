// What a check found about a package as JSON for programs.
#ifndef ORVEL_ORVELBOX_CHECK_PACKAGE_JSON_H_
#define ORVEL_ORVELBOX_CHECK_PACKAGE_JSON_H_

#include <string>

#include "orvelbox/check/result.h"

namespace orvelbox {

// Everything as one line, and back. The reader takes only what the writer writes (nlohmann::json's exceptions tell of
// anything else).
std::string ToJson(const CheckedPackage& package);
CheckedPackage CheckedPackageFromJson(const std::string& line);

}  // namespace orvelbox

#endif
