// How a unit test runs.
#include "tests/support/unit_case.h"

#include <stdexcept>

#include "tests/support/child.h"
#include "tests/support/device_root.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// The child ends without the sanitizer's own look for leaks.
void ExpectNoLeaks() {
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(0, __lsan_do_recoverable_leak_check()) << "memory was leaked";
#endif
}

std::function<void()> OverFreshDoubles(const Body& body) {
  return [&body] {
    doubles::Platform& platform = doubles::Reset();
    body(platform);
    for (const std::string& function : platform.misuses) ADD_FAILURE() << function << " was given a wrong handle";
    ExpectNoLeaks();
  };
}

}  // namespace

void Fresh(const Body& body) { support::InFreshProcess(OverFreshDoubles(body)); }

void FreshOnDevice(const Body& body) { support::OnDevice(OverFreshDoubles(body)); }

testing::AssertionResult Holds(const doubles::Platform& platform, const doubles::Steps& expected) {
  const std::string difference = doubles::Difference(platform.journal, expected);
  if (difference.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << difference;
}

testing::AssertionResult Holds(const doubles::Platform& platform, std::initializer_list<doubles::Steps> expected) {
  return Holds(platform, doubles::Join(expected));
}

testing::AssertionResult AllRecordsDestroyed(const doubles::Platform& platform) {
  if (platform.Alive() == 0) return testing::AssertionSuccess();
  return testing::AssertionFailure() << platform.Alive() << " records are left";
}

testing::AssertionResult RaisesNullString(const std::function<void()>& call) {
  try {
    call();
  } catch (const std::logic_error& error) {
    if (std::string(error.what()) == "basic_string: construction from null is not valid") {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "the error says: " << error.what();
  }
  return testing::AssertionFailure() << "nothing was raised";
}
