// A desk with a device and packages in a test's own directory, and orvelbox run on it as a user runs it.
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

// The words of the tests, which include nothing that this header brings.
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
// be put into either.
std::string ManifestText(const std::string& id, const std::string& version, const std::string& application = "",
                         const std::string& package = "");
std::string CobaMetadata();
std::string DebuggingPrivileges();

class Desk : public testing::Test {
 protected:
  Desk();

  // Runs orvelbox with the arguments on the desk's device and waits for its end.
  Result Run(const std::vector<std::string>& arguments) const;
  // Runs orvelbox; its exit status must be `status`.
  Result RunExpecting(int status, const std::vector<std::string>& arguments) const;
  // Runs orvelbox, which must refuse with one line that holds `texts`, and leave the device alone.
  void ExpectRefusal(const std::vector<std::string>& arguments, const std::vector<std::string>& texts) const;
  // Starts orvelbox without waiting; `before` runs in the new process first.
  pid_t Start(
      const std::vector<std::string>& arguments, const std::function<void()>& before = [] {}) const;
  Result WaitFor(pid_t process) const;

  // Makes the package directory NAME with the manifest and the files, by their relative paths.
  std::string MakePackage(const std::string& name, const std::string& manifest,
                          const std::map<std::string, std::string>& files = {}) const;
  // Gives the device's platform a file.
  void AddPlatformFile(const std::string& relative_path) const;

  // Where the device's path lies on the desk.
  std::string OnDesk(const std::string& path) const { return device_.OnDesk(path).string(); }
  std::string CacheFile(const std::string& name) const;
  // What the database says and every other file but the log, the loader's record and the lock, with its content: what
  // a refused command leaves as it was.
  std::map<std::string, std::string> DeviceState() const;

  support::TempDir dir_;
  host::Device device_;
  std::map<std::string, std::string> environment_;  // added to orvelbox's environment
};

// A desk whose test calls hooks: skipped, with the reason, where this machine cannot provide the fixed paths.
class HookDesk : public Desk {
 protected:
  void SetUp() override;
};

// A desk whose test runs orvelbox on a machine of its own (tests/host/machine.h): skipped, with the reason, without
// one.
class MachineDesk : public Desk {
 protected:
  void SetUp() override;
};

}  // namespace e2e

#endif
