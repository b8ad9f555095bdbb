// What `--trace` requires of its file. It is written in platform/host/trace_file.
#ifndef ORVEL_ORVELBOX_TRACE_TRACE_FILE_H_
#define ORVEL_ORVELBOX_TRACE_TRACE_FILE_H_

#include <filesystem>

namespace orvelbox {

// Refuses, before anything is done, a file that no trace can be written to, and one that holds something else. Throws
// host::DeviceError.
void RequireTraceable(const std::filesystem::path& file);

}  // namespace orvelbox

#endif
