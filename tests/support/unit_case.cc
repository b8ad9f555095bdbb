// Runs unit tests.
#include "tests/support/unit_case.h"

#include <stdexcept>

namespace unit {
namespace {

std::function<void()> OverFreshDoubles(const Body& body) {
  return [&body] {
    Platform& platform = doubles::Reset();
    body(platform);
    for (const std::string& function : platform.misuses) ADD_FAILURE() << function << " was given a wrong handle";
    support::ExpectNoLeaks();
  };
}

}  // namespace

void Fresh(const Body& body) { support::InFreshProcess(OverFreshDoubles(body)); }

void FreshOnDevice(const Body& body) { support::OnDevice(OverFreshDoubles(body)); }

Platform& PlatformWith(const std::string& root) {
  Platform& platform = doubles::Reset();
  platform.packages.push_back(doubles::MakePackage("pkg", root));
  return platform;
}

testing::AssertionResult Holds(const Platform& platform, const Steps& expected) {
  const std::string difference = doubles::Difference(platform.journal, expected);
  if (difference.empty()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << difference;
}

testing::AssertionResult Holds(const Platform& platform, std::initializer_list<Steps> expected) {
  return Holds(platform, doubles::Join(expected));
}

testing::AssertionResult AllRecordsDestroyed(const Platform& platform) {
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

}  // namespace unit
