// What to put into a project file so that DLLs stay out of the package.
#ifndef ORVEL_ORVELBOX_CHECK_PROJECT_LINES_H_
#define ORVEL_ORVELBOX_CHECK_PROJECT_LINES_H_

#include <string>
#include <vector>

#include "orvelbox/check/result.h"

namespace orvelbox {

// The lines for the duplicates of `package` that a copy outside of it makes duplicates, to be put inside of <Project>.
// None when there are none.
std::vector<std::string> ProjectLines(const CheckedPackage& package);

}  // namespace orvelbox

#endif
