// The start of the candidate loader: reads both cache files and checks that everything they list exists.
#ifndef ORVEL_PLATFORM_HOST_LOADER_H_
#define ORVEL_PLATFORM_HOST_LOADER_H_

#include <filesystem>
#include <string>
#include <vector>

#include "platform/host/device.h"

namespace host {

// The result of one start.
struct LoaderStart {
  std::vector<std::string> tpa;   // what was read from TPA.txt
  std::vector<std::string> coba;  // what was read from CoBA.txt
  std::string error;              // one line; empty when the loader started
};

// The entries of a cache text: "[START]", paths separated by ":", "[END]". The first element may be empty. Throws a
// DeviceError that says what is wrong with `file` for any other text.
std::vector<std::string> ParseCache(const std::filesystem::path& file, const std::string& text);

// Reads and checks the cache files in `directory`. Problems are returned as the error, not as a DeviceError.
LoaderStart StartLoader(const std::filesystem::path& directory);

// Writes the device's loader record: JSON with the lists "TPA" and "CoBA", "starts" (the number of starts, including
// this one) and "error" (text or null). Throws DeviceError.
void RecordLoaderStart(const Device& device, const LoaderStart& start);

}  // namespace host

#endif
