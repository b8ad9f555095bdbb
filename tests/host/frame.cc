// Fixtures of the host platform's tests.
#include "tests/host/frame.h"

#include <sys/stat.h>

#include "platform/host/fixed_paths.h"

namespace host_tests {

void MachineTest::SetUp() {
  const std::string obstacle = machine::ObstacleToEmptied();
  if (!obstacle.empty()) GTEST_SKIP() << "no namespace for another machine: " << obstacle;
}

void MachineTest::OnEmptiedMachine(const std::function<void()>& body) {
  support::InFreshProcess([&] {
    machine::EnterEmptied();
    body();
  });
}

std::string OrdinaryUsersObstacle() {
  const support::TempDir directory;
  const fs::path file = directory / "obstacle";
  WriteFile(file, "");
  fs::permissions(file, fs::perms::all);
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    std::string reason;
    host::AvailableFixedPathsMethod(&reason);
    WriteFile(file, reason);
  });
  return ReadFile(file);
}

void LayOutRoot(const fs::path& root) {
  const mode_t mask = umask(022);
  WriteFile(root / "usr/share/dotnet.orvel/framework/F.dll", "platform");
  WriteFile(root / "opt/usr/globalapps/p/x", "user area");
  umask(mask);
}

void ExpectDeviceAtFixedPaths() {
  EXPECT_EQ("platform", ReadFile("/usr/share/dotnet.orvel/framework/F.dll"));
  EXPECT_EQ("user area", ReadFile("/opt/usr/globalapps/p/x"));
}

}  // namespace host_tests
