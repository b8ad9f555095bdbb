// The trace file: a JSON array of Chrome trace events, for Perfetto or chrome://tracing. Which spans are open is not
// known here.
#ifndef ORVEL_PLATFORM_HOST_TRACE_FILE_H_
#define ORVEL_PLATFORM_HOST_TRACE_FILE_H_

#include <filesystem>
#include <string>

namespace host {

// Appends one event of this thread, at the present time: phase 'B' opens a span, 'E' closes it. Creates the file where
// it is missing. Several processes may write one file; the array's closing bracket, which the format does not demand,
// is never written. Returns false when the event could not be written.
bool AppendTraceEvent(const std::filesystem::path& file, char phase, const std::string& name);

}  // namespace host

#endif
