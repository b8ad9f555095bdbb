// What checks found, for people and for programs.
#ifndef ORVEL_ORVELBOX_CHECK_FORMATS_H_
#define ORVEL_ORVELBOX_CHECK_FORMATS_H_

#include <string>
#include <vector>

#include "orvelbox/check/result.h"
#include "orvelbox/desk/lines.h"

namespace orvelbox {

// All about a package that could be checked, in words and a table; still to be made printable (output.h).
Lines DescribeCheck(const CheckedPackage& package);

// The lines for the duplicates of `package` that a copy outside of it makes duplicates, to be put inside of <Project>.
// None when there are none.
Lines ProjectLines(const CheckedPackage& package);

// Everything as one line of JSON.
std::string ToJson(const CheckedPackage& package);

// A log in SARIF 2.1.0, which code review tools read, with one run: a result per duplicate, a notification per package
// that could not be checked.
std::string ToSarif(const std::vector<CheckedPackage>& packages);

}  // namespace orvelbox

#endif
