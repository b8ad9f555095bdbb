// Fixtures of the host platform's tests. The tests do not repeat the includes of this header.
#ifndef TESTS_HOST_FRAME_H_
#define TESTS_HOST_FRAME_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/host/device.h"
#include "platform/host/package_store.h"
#include "tests/host/machine.h"
#include "tests/host/samples.h"
#include "tests/support/child.h"
#include "tests/support/device_error.h"
#include "tests/support/files.h"
#include "tests/support/standard_error.h"

namespace host_tests {

namespace fs = std::filesystem;
using host::PackageStore;
using samples::SamplePackage;
using support::ErrorOf;
using support::IsThere;
using support::ReadFile;
using support::WriteFile;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

// A test with its own directory.
class DirectoryTest : public testing::Test {
 protected:
  const fs::path& directory() const { return directory_.path(); }

 private:
  support::TempDir directory_;
};

// A test in its own namespaces (machine.h); skipped with the reason if this machine has none.
class MachineTest : public DirectoryTest {
 protected:
  void SetUp() override;
  // Runs `body` as root of an emptied machine.
  static void OnEmptiedMachine(const std::function<void()>& body);
  // The path for a device's root.
  const fs::path& root() const { return directory(); }
};

// Why an ordinary user cannot have the fixed paths here; nothing when it is possible.
std::string OrdinaryUsersObstacle();

// Creates a root with one file in each directory for a fixed path, which all users may read, and expects those files
// at the fixed paths.
void LayOutRoot(const fs::path& root);
void ExpectDeviceAtFixedPaths();

}  // namespace host_tests

#endif
