// Many packages judged on all cores. The command reports the results.
#ifndef ORVEL_ORVELBOX_CHECK_CHECK_H_
#define ORVEL_ORVELBOX_CHECK_CHECK_H_

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "orvelbox/check/result.h"

namespace orvelbox {

struct CheckRequest {
  std::vector<std::string> packages;    // directories and archives
  std::string platform;                 // a directory or a list file; empty: the device
  std::vector<std::string> coba;        // further CoBA packages
  std::vector<std::string> privileges;  // URIs, beside those of the manifests
  unsigned jobs = 0;                    // packages at a time; 0: one per core
};

// Takes what is found out.
class CheckReceiver {
 public:
  virtual ~CheckReceiver() = default;
  // One package, in the order in which they were asked for.
  virtual void Receive(CheckedPackage package) = 0;
  // So many packages are finished.
  virtual void Finished(std::size_t packages) = 0;
};

// The URI of a privilege, which may be given by its short name ("platform", "appdebugging"). Throws
// std::invalid_argument, with a line for people, when it is neither.
std::string PrivilegeUri(const std::string& text);

// Checks the packages; `device` is the device's directory, not looked at when a platform is asked for. Changes nothing.
// Throws host::DeviceError when what to check against cannot be read.
void CheckPackages(const CheckRequest& request, const std::filesystem::path& device, CheckReceiver& receiver);

// Checks the package of a number; must not throw.
using Work = std::function<CheckedPackage(std::size_t number)>;
// Calls `work` for 0 … count-1 on at most `threads` (not 0) threads; `receiver` is called in this one. To be called
// while host::HeldSignals lives: SIGINT, SIGTERM and SIGHUP then let no more work begin and make this throw
// host::DeviceError.
void RunOnThreads(std::size_t count, unsigned threads, const Work& work, CheckReceiver& receiver);

}  // namespace orvelbox

#endif
