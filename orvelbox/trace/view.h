// The command `trace`, and what `--trace` asks of its file.
#ifndef ORVEL_ORVELBOX_TRACE_VIEW_H_
#define ORVEL_ORVELBOX_TRACE_VIEW_H_

#include <filesystem>

namespace orvelbox {

// Refuses, before anything is done, a file that no trace can be written to, and one that holds something else. Throws
// host::DeviceError.
void RequireTraceable(const std::filesystem::path& file);

// Draws the trace in `file`: on standard output, or, when `output` is not empty, into that file, as its extension says
// (.svg, else HTML). Throws host::DeviceError.
void ShowTrace(const std::filesystem::path& file, const std::filesystem::path& output);

}  // namespace orvelbox

#endif
