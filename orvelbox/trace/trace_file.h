// What `--trace` asks of its file. What is written there is platform/host/trace_file.h's business.
#ifndef ORVEL_ORVELBOX_TRACE_TRACE_FILE_H_
#define ORVEL_ORVELBOX_TRACE_TRACE_FILE_H_

#include <filesystem>

namespace orvelbox {

// Refuses, before anything is done, a file that no trace can be written to, and one that holds something else. Throws
// host::DeviceError.
void RequireTraceable(const std::filesystem::path& file);

}  // namespace orvelbox

#endif
