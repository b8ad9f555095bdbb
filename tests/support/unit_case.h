// How a unit test runs: in a process of its own, since what the plug-in keeps between calls must be fresh, and over
// fresh doubles.
#ifndef TESTS_SUPPORT_UNIT_CASE_H_
#define TESTS_SUPPORT_UNIT_CASE_H_

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>

#include "tests/doubles/expected_journal.h"
#include "tests/doubles/platform.h"
#include "tests/support/framed_test.h"

using Body = std::function<void(doubles::Platform&)>;

// Runs the body in a fresh process. No test ever misuses a record of the platform: that is checked at the end.
void Fresh(const Body& body);

// The same with the fixed paths of an empty device (device_root.h). To be the last statement of a test.
void FreshOnDevice(const Body& body);

// Tests with such a body, which knows its doubles as `platform`.
#define FRESH_TEST(suite, name) FRAMED_TEST(Fresh, doubles::Platform& platform, suite, name)
#define DEVICE_TEST(suite, name) FRAMED_TEST(FreshOnDevice, doubles::Platform& platform, suite, name)

// Does the journal hold exactly these steps?
testing::AssertionResult Holds(const doubles::Platform& platform, std::initializer_list<doubles::Steps> expected);
testing::AssertionResult Holds(const doubles::Platform& platform, const doubles::Steps& expected);

// Are all records given back?
testing::AssertionResult AllRecordsDestroyed(const doubles::Platform& platform);

// Does `call` raise the standard library's error for a string made of a null pointer?
testing::AssertionResult RaisesNullString(const std::function<void()>& call);

#endif
