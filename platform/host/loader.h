// What the candidate loader does at its start: reads both cache files and checks that all they list is there.
#ifndef ORVEL_PLATFORM_HOST_LOADER_H_
#define ORVEL_PLATFORM_HOST_LOADER_H_

#include <filesystem>
#include <string>
#include <vector>

#include "platform/host/device.h"

namespace host {

// The outcome of one start.
struct LoaderStart {
  std::vector<std::string> tpa;   // what was read from TPA.txt
  std::vector<std::string> coba;  // what was read from CoBA.txt
  std::string error;              // one line, empty: the loader started
};

// The entries of a cache text: "[START]", paths separated by ":", "[END]". The first element may be empty. Throws
// DeviceError, saying what is wrong with `file`, on anything else.
std::vector<std::string> ParseCache(const std::filesystem::path& file, const std::string& text);

// Reads and checks the cache files in `directory`. Never throws a DeviceError: what is wrong becomes the error.
LoaderStart StartLoader(const std::filesystem::path& directory);

// Writes the device's loader record: JSON with the lists "TPA" and "CoBA", "starts" (how often a loader was started,
// this time included) and "error" (text or null). Throws DeviceError.
void RecordLoaderStart(const Device& device, const LoaderStart& start);

}  // namespace host

#endif
