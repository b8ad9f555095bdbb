// The whole state of a device, to be compared with a later one: every file, the package database, the cache files. Not
// the log, the loader's record and the lock, which every operation touches.
#ifndef ORVEL_ORVELBOX_DEVICE_STATE_H_
#define ORVEL_ORVELBOX_DEVICE_STATE_H_

#include <map>
#include <string>
#include <vector>

#include "platform/host/device.h"

namespace orvelbox {

// What there is, by a name for people (a path of the device, or "package ID"), with a text that is different whenever
// the thing is.
using DeviceState = std::map<std::string, std::string>;

// Throws host::DeviceError.
DeviceState StateOf(const host::Device& device);

// One line per difference: "+ NAME" for what came, "- NAME" for what went, "~ NAME" for what changed.
std::vector<std::string> Differences(const DeviceState& before, const DeviceState& after);

}  // namespace orvelbox

#endif
