// A device of the host platform in a temporary directory, and a process in which the fixed paths and the platform's
// libraries use that device.
#ifndef TESTS_INTEGRATION_DESK_H_
#define TESTS_INTEGRATION_DESK_H_

#include <functional>
#include <string>
#include <vector>

#include "platform/host/device.h"
#include "platform/host/log_file.h"
#include "platform/host/package_store.h"
#include "tests/support/framed_test.h"
#include "tests/support/loaded_plugin.h"

// The loader's record of its last start.
struct LoaderRecord {
  int starts = 0;
  std::vector<std::string> tpa;
  std::vector<std::string> coba;
  std::string error;  // empty: it started
};

class Desk {
 public:
  explicit Desk(host::Device device) : device_(std::move(device)) {}

  const host::Device& device() const { return device_; }

  // Registers a package with one application. Creates and returns its root, "/opt/usr/apps/ID".
  std::string Register(const std::string& id, const std::vector<std::string>& privileges = {},
                       const std::vector<host::MetadataEntry>& metadata = {}) const;
  // The same for a CoBA package.
  std::string RegisterCoba(const std::string& id) const;

  // All log records; or the texts of those whose message contains `part`.
  std::vector<host::LogRecord> Log() const;
  std::vector<std::string> LogTexts(const std::string& part) const;

  LoaderRecord Loader() const;

  // Sends the event with a dotnet-inhouse manifest. Returns its result, and its standard error in `text`.
  static int Send(const LoadedPlugin& plugin, const std::string& event, const std::string& id,
                  std::string* text = nullptr);

 private:
  host::Device device_;
};

// Runs the body in a child process on a new device. Must be the last statement of a test.
void OnDesk(const std::function<void(const Desk&)>& body, const host::DeviceConfig& config = {});

// A test with such a body, whose parameter is `desk`.
#define DESK_TEST(suite, name) FRAMED_TEST(OnDesk, const Desk& desk, suite, name)

#endif
