// Roots to take the fixed paths from.
#include "tests/host/roots.h"

#include <gtest/gtest.h>

#include "platform/host/fixed_paths.h"
#include "tests/support/files.h"

namespace roots {

namespace fs = std::filesystem;
using support::ReadFile;
using support::WriteFile;

void LayOutRoot(const fs::path& root) {
  WriteFile(root / "usr/share/dotnet.orvel/framework/F.dll", "platform");
  WriteFile(root / "opt/usr/globalapps/p/x", "user area");
}

void RunThere(const fs::path& root, const std::function<void()>& body) {
  const auto outcome = host::RunWithFixedPaths(root, [&] {
    body();
    return testing::Test::HasFailure() ? 1 : 0;
  });
  EXPECT_FALSE(outcome.signalled);
  EXPECT_EQ(0, outcome.code);
}

void ExpectDeviceAtFixedPaths() {
  EXPECT_EQ("platform", ReadFile("/usr/share/dotnet.orvel/framework/F.dll"));
  EXPECT_EQ("user area", ReadFile("/opt/usr/globalapps/p/x"));
}

}  // namespace roots
