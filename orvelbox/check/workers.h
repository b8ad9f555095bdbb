// Work spread over threads, with its results in order.
#ifndef ORVEL_ORVELBOX_CHECK_WORKERS_H_
#define ORVEL_ORVELBOX_CHECK_WORKERS_H_

#include <cstddef>
#include <functional>

#include "orvelbox/check/result.h"

namespace orvelbox {

// Calls `work` for 0 … count-1 on at most `threads` (not 0) threads, and `done` on this one with each result, in the
// order of the numbers, as soon as it is that number's turn. `finished` is called here with how many are through,
// whenever that changes. `work` must not throw. To be called while host::HeldSignals lives: SIGINT, SIGTERM and SIGHUP
// then let no more work begin and make this throw host::DeviceError.
void RunOnThreads(std::size_t count, unsigned threads, const std::function<CheckedPackage(std::size_t)>& work,
                  const std::function<void(std::size_t, CheckedPackage)>& done,
                  const std::function<void(std::size_t)>& finished);

}  // namespace orvelbox

#endif
