// What a check found, in words and a table for people. Pure; the lines are still to be made printable (output.h).
#ifndef ORVEL_ORVELBOX_CHECK_TABLE_H_
#define ORVEL_ORVELBOX_CHECK_TABLE_H_

#include "orvelbox/check/result.h"
#include "orvelbox/desk/lines.h"

namespace orvelbox {

// All about a package that could be checked.
Lines DescribeCheck(const CheckedPackage& package);

}  // namespace orvelbox

#endif
