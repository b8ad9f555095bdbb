// The devices of all integration cases, as the cases left them, each with its log.
#ifndef TESTS_ORVELBOX_HISTORY_KEPT_DEVICES_H_
#define TESTS_ORVELBOX_HISTORY_KEPT_DEVICES_H_

#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/orvelbox/frame.h"

namespace orvelbox {

class KeptDevices {
 public:
  // Runs the integration tests, which have to pass. There are no devices where the machine cannot provide the fixed
  // paths, and the tests skip.
  KeptDevices() {
    const std::string output = directory_ / "output";
    const std::string kept = directory_ / "devices";
    fs::create_directory(kept);
    const std::string command = "KEPT_LOGS='" + kept + "' '" INTEGRATION_TESTS "' >'" + output + "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << ReadFile(output);
    for (const std::string& name : support::NamesIn(kept)) devices_.push_back({kept + "/" + name});
    const bool skips = ReadFile(output).find("[  SKIPPED ]") != std::string::npos;
    EXPECT_GE(devices_.size(), skips ? 0U : 20U);
  }

  const std::vector<host::Device>& devices() const { return devices_; }

 private:
  support::TempDir directory_;
  std::vector<host::Device> devices_;
};

}  // namespace orvelbox

#endif
