// Work spread over child processes: each piece in a process of its own, as many at a time as wanted.
#ifndef ORVEL_ORVELBOX_CHECK_PROCESS_POOL_H_
#define ORVEL_ORVELBOX_CHECK_PROCESS_POOL_H_

#include <cstddef>
#include <functional>
#include <string>

#include "platform/host/child_process.h"

namespace orvelbox {

// How a piece of work ended.
struct PieceResult {
  std::string text;     // what it returned
  std::string problem;  // how its process died instead, in words; empty otherwise
};

// Calls `work` for 0 … count-1, each in a forked child, at most `processes` (not 0) at a time, and `done` in this
// process with each result, in the order of the numbers, as soon as it is that number's turn. `finished` is called with
// how many are through, whenever that changes. `work` must not throw. SIGINT, SIGTERM and SIGHUP end the children
// first: then it throws host::DeviceError, and the signal takes effect when the caller gives up `signals`.
void RunInProcesses(const host::HeldSignals& signals, std::size_t count, unsigned processes,
                    const std::function<std::string(std::size_t)>& work,
                    const std::function<void(std::size_t, const PieceResult&)>& done,
                    const std::function<void(std::size_t)>& finished);

}  // namespace orvelbox

#endif
