// Fixtures of the tests of orvelbox's components. The tests do not repeat the includes of this header.
#ifndef TESTS_ORVELBOX_FRAME_H_
#define TESTS_ORVELBOX_FRAME_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/host/device.h"
#include "tests/support/device_error.h"
#include "tests/support/files.h"

namespace orvelbox {

namespace fs = std::filesystem;
using support::ErrorOf;
using support::ReadFile;
using support::WriteFile;
using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

// A test with its own directory.
class DirectoryTest : public testing::Test {
 protected:
  const support::TempDir dir_;
};

}  // namespace orvelbox

#endif
