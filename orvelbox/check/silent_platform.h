// The platform that the plug-in's functions see while they judge for `check`: it keeps no log and writes no trace.
#ifndef ORVEL_ORVELBOX_CHECK_SILENT_PLATFORM_H_
#define ORVEL_ORVELBOX_CHECK_SILENT_PLATFORM_H_

#include <string>

namespace orvelbox {

// What the path-configuration library has for the root of read-write applications from now on.
void SetReadWriteRoot(const std::string& root);

}  // namespace orvelbox

#endif
