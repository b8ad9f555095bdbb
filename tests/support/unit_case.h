// Common code of the unit tests: each runs in a new process, because the plug-in keeps state between calls, and with
// fresh doubles. The tests do not repeat the includes of this header.
#ifndef TESTS_SUPPORT_UNIT_CASE_H_
#define TESTS_SUPPORT_UNIT_CASE_H_

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/doubles/expected_journal.h"
#include "tests/doubles/platform.h"
#include "tests/support/child.h"
#include "tests/support/device_root.h"
#include "tests/support/expected_lines.h"
#include "tests/support/files.h"
#include "tests/support/framed_test.h"
#include "tests/support/manifests.h"
#include "tests/support/removal_texts.h"
#include "tests/support/standard_error.h"
#include "tests/support/uris.h"

namespace unit {

// Names for the unit tests.
namespace fs = std::filesystem;
using Catalogue = std::map<std::string, std::string>;
using Flags = std::map<std::string, bool>;
using Texts = std::vector<std::string>;
using doubles::Call;
using doubles::Event;
using doubles::Join;
using doubles::Package;
using doubles::Platform;
using doubles::Record;
using doubles::Restart;
using doubles::Source;
using doubles::Steps;
using doubles::Traced;
using support::ApplicationElement;
using support::CobaManifest;
using support::Document;
using support::DotnetManifest;
using support::DuplicateLine;
using support::InformationText;
using support::IsThere;
using support::kCobaFile;
using support::kCobaKey;
using support::kCoreDirectory;
using support::kDebuggingPrivilege;
using support::kDpcDirectory;
using support::kFrameworkDirectory;
using support::kPlatformPrivilege;
using support::kTpaFile;
using support::kTvAppApiDirectory;
using support::ManifestOf;
using support::MetadataElement;
using support::OtherManifest;
using support::Parse;
using support::ReadFile;
using support::StandardErrorOf;
using support::TempDir;
using support::WriteFile;
using support::WriteFiles;

using Body = std::function<void(Platform&)>;

// Runs the body in a new process. Afterwards checks that no record of the platform was misused.
void Fresh(const Body& body);

// The same with the fixed paths of an empty device (device_root.h). Must be the last statement of a test.
void FreshOnDevice(const Body& body);

// Tests with such a body, whose parameter is `platform`.
#define FRESH_TEST(suite, name) FRAMED_TEST(unit::Fresh, doubles::Platform& platform, suite, name)
#define DEVICE_TEST(suite, name) FRAMED_TEST(unit::FreshOnDevice, doubles::Platform& platform, suite, name)

// Fresh doubles whose platform has the package "pkg" with this root.
Platform& PlatformWith(const std::string& root);

// Does the journal hold exactly these steps?
testing::AssertionResult Holds(const Platform& platform, std::initializer_list<Steps> expected);
testing::AssertionResult Holds(const Platform& platform, const Steps& expected);

// Were all records destroyed?
testing::AssertionResult AllRecordsDestroyed(const Platform& platform);

// Does `call` throw the standard library's error for a string made of a null pointer?
testing::AssertionResult RaisesNullString(const std::function<void()>& call);

}  // namespace unit

#endif
