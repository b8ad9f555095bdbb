// The frame of the host platform's tests, which include nothing that this header brings.
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

// A test with a directory of its own.
class DirectoryTest : public testing::Test {
 protected:
  const fs::path& directory() const { return directory_.path(); }

 private:
  support::TempDir directory_;
};

// A test on a machine of its own: skipped, with the reason, where this one provides none.
class MachineTest : public DirectoryTest {
 protected:
  void SetUp() override;
  // Runs `body` as root of an emptied machine.
  static void OnEmptiedMachine(const std::function<void()>& body);
  // Where a device's root is to be.
  const fs::path& root() const { return directory(); }
};

// Makes a root with one file in each directory that belongs at a fixed path; expects those files there.
void LayOutRoot(const fs::path& root);
void ExpectDeviceAtFixedPaths();

}  // namespace host_tests

#endif
