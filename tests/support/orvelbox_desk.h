// A device and packages in a test's own directory, and orvelbox run as a user runs it.
#ifndef TESTS_SUPPORT_ORVELBOX_DESK_H_
#define TESTS_SUPPORT_ORVELBOX_DESK_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/host/device.h"
#include "tests/support/child.h"
#include "tests/support/files.h"

namespace e2e {

// Names for the tests. They do not repeat the includes of this header.
namespace fs = std::filesystem;
using testing::AllOf;
using testing::AnyOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// How a program ended and what it printed. `status` is 128 plus the signal for a killed one.
struct Result {
  int status = 0;
  std::string out;
  std::string err;
};

// The manifest of a dotnet-inhouse package with the application ID.main; `application` and `package` are elements to
// insert into these.
std::string ManifestText(const std::string& id, const std::string& version, const std::string& application = "",
                         const std::string& package = "");
std::string CobaMetadata();
std::string DebuggingPrivileges();

class Desk : public testing::Test {
 protected:
  Desk();

  // Runs orvelbox with the arguments on the test's device and waits for its end.
  Result Run(const std::vector<std::string>& arguments) const;
  // Runs orvelbox; its exit status must be `status`.
  Result RunExpecting(int status, const std::vector<std::string>& arguments) const;
  // Runs orvelbox, which must fail with one line that contains `texts`, and not change the device.
  void ExpectRefusal(const std::vector<std::string>& arguments, const std::vector<std::string>& texts) const;
  // Starts orvelbox without waiting; `before` runs first in the new process.
  pid_t Start(
      const std::vector<std::string>& arguments, const std::function<void()>& before = [] {}) const;
  Result WaitFor(pid_t process) const;

  // Creates the package directory NAME with the manifest and the files, by their relative paths.
  std::string MakePackage(const std::string& name, const std::string& manifest,
                          const std::map<std::string, std::string>& files = {}) const;
  // Adds a file to the device's platform.
  void AddPlatformFile(const std::string& relative_path) const;

  // The desk's path for the device's path.
  std::string OnDesk(const std::string& path) const { return device_.OnDesk(path).string(); }
  std::string CacheFile(const std::string& name) const;
  // The content of the database and of every other file except the log, the loader's record and the lock; a refused
  // command must not change it.
  std::map<std::string, std::string> DeviceState() const;

  support::TempDir dir_;
  host::Device device_;
  std::map<std::string, std::string> environment_;  // added to orvelbox's environment
};

// A test that calls hooks: skipped with the reason if this machine cannot provide the fixed paths.
class HookDesk : public Desk {
 protected:
  void SetUp() override;
  // Installs org.example.shop, which duplicates a DLL of the platform and one of a component, with more files.
  void InstallShop(std::map<std::string, std::string> files = {}) const;
};

// A test that runs orvelbox in its own namespaces (tests/host/machine.h): skipped with the reason if there are none.
class MachineDesk : public Desk {
 protected:
  void SetUp() override;
};

}  // namespace e2e

#endif
