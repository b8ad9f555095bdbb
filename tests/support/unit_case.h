// The frame of the unit tests: each runs in a process of its own, since what the plug-in keeps between calls must be
// fresh, and over fresh doubles. A test includes nothing that this header brings.
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

// The words of the unit tests.
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

// Runs the body in a fresh process. No test ever misuses a record of the platform: that is checked at the end.
void Fresh(const Body& body);

// The same with the fixed paths of an empty device (device_root.h). To be the last statement of a test.
void FreshOnDevice(const Body& body);

// Tests with such a body, which knows its doubles as `platform`.
#define FRESH_TEST(suite, name) FRAMED_TEST(unit::Fresh, doubles::Platform& platform, suite, name)
#define DEVICE_TEST(suite, name) FRAMED_TEST(unit::FreshOnDevice, doubles::Platform& platform, suite, name)

// Fresh doubles whose platform knows the package "pkg" with this root.
Platform& PlatformWith(const std::string& root);

// Does the journal hold exactly these steps?
testing::AssertionResult Holds(const Platform& platform, std::initializer_list<Steps> expected);
testing::AssertionResult Holds(const Platform& platform, const Steps& expected);

// Are all records given back?
testing::AssertionResult AllRecordsDestroyed(const Platform& platform);

// Does `call` raise the standard library's error for a string made of a null pointer?
testing::AssertionResult RaisesNullString(const std::function<void()>& call);

}  // namespace unit

#endif
