// Which method for the fixed paths a machine allows. What runs at them is in fixed_paths_test.
#include "platform/host/fixed_paths_methods.h"

#include <cerrno>
#include <cstring>

#include "platform/host/fixed_paths.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

using host::FixedPathsMethod;

TEST(FixedPathsMethods, an_ordinary_user_uses_a_user_namespace) {
  const std::string obstacle = OrdinaryUsersObstacle();
  if (!obstacle.empty()) GTEST_SKIP() << obstacle;
  support::InFreshProcess([] {
    machine::BecomeOrdinaryUser();
    std::string reason = "untouched";
    EXPECT_EQ(FixedPathsMethod::kUserNamespace, host::AvailableFixedPathsMethod(&reason));
    EXPECT_EQ("", reason);
  });
}

TEST(FixedPathsMethods, root_uses_a_mount_namespace) {
  const std::string obstacle = machine::ObstacleToEmptied();
  if (!obstacle.empty()) GTEST_SKIP() << "no namespace for another machine: " << obstacle;
  support::InFreshProcess([] {
    machine::EnterEmptied();  // any user becomes root there
    EXPECT_EQ(FixedPathsMethod::kMountNamespace, host::AvailableFixedPathsMethod(nullptr));
  });
}

TEST(FixedPathsMethods, a_refused_namespace_is_named) {
  support::InFreshProcess([] {
    machine::RefuseNamespaces();
    const std::string reason = std::strerror(EPERM);
    EXPECT_EQ("cannot make a mount namespace: " + reason, ErrorOf([] { host::EnterMountNamespace(false); }));
    EXPECT_EQ("cannot make a user namespace: " + reason, ErrorOf([] { host::EnterMountNamespace(true); }));
  });
}

TEST(FixedPathsMethods, namespaces_without_mounts_are_of_no_use) {
  const std::string obstacle = OrdinaryUsersObstacle();
  if (!obstacle.empty()) GTEST_SKIP() << obstacle;
  support::InFreshProcess([] {
    machine::RefuseMounts();
    machine::BecomeOrdinaryUser();
    std::string reason;
    EXPECT_EQ(FixedPathsMethod::kNone, host::AvailableFixedPathsMethod(&reason));
    EXPECT_THAT(reason, HasSubstr("(cannot detach the mounts: " + std::string(std::strerror(EPERM)) + ")"));
  });
}

TEST(FixedPathsMethods, an_ordinary_user_without_namespaces_is_told_what_to_do) {
  support::InFreshProcess([] {
    machine::RefuseNamespaces();
    machine::BecomeOrdinaryUser();
    const std::string expected =
        "no private namespaces here (cannot make a user namespace: " + std::string(std::strerror(EPERM)) +
        "): allow user namespaces (sysctl user.max_user_namespaces; in a container, its security options), or run as "
        "root";
    std::string reason;
    EXPECT_EQ(FixedPathsMethod::kNone, host::AvailableFixedPathsMethod(&reason));
    EXPECT_EQ(expected, reason);
    EXPECT_EQ(expected, ErrorOf([] { host::RunWithFixedPaths("/", [] { return 0; }); }));
  });
}

}  // namespace
}  // namespace host_tests
