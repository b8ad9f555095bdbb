// Undoing what was half done when an error comes up.
#ifndef ORVEL_ORVELBOX_DESK_WITH_ROLLBACK_H_
#define ORVEL_ORVELBOX_DESK_WITH_ROLLBACK_H_

#include <exception>
#include <string>

#include "platform/host/device.h"

namespace orvelbox {

// Does `work` and gives its result. When it throws, does `undo` and lets the error go on; when `undo` fails too,
// host::DeviceError tells of both.
template <typename Work, typename Undo>
auto WithRollback(const Work& work, const Undo& undo) {
  try {
    return work();
  } catch (const std::exception& error) {
    try {
      undo();
    } catch (const std::exception& second) {
      throw host::DeviceError(std::string(error.what()) +
                              " (cleaning up failed too, and the next command tries again: " + second.what() + ")");
    }
    throw;
  }
}

}  // namespace orvelbox

#endif
