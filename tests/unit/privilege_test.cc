// Privilege queries.
#include "tests/support/unit_case.h"
#include "util/privilege_checker.h"

namespace unit {
namespace {

const Source kCallback("privilege_checker", "privilege_info_cb");
const Source kHasPrivilege("privilege_checker", "HasPrivilege");

Steps LookUp(std::initializer_list<Steps> inside) {
  return Traced("privilege_checker", "bool HasPrivilege(const std::string&, const std::string&)", inside);
}

Platform& PlatformWithPrivileges(const std::vector<std::string>& privileges) {
  Platform& platform = PlatformWith("/pkg");
  platform.packages.front().privileges = privileges;
  return platform;
}

TEST(Privilege, a_declared_privilege_is_found_and_the_record_destroyed) {
  Platform& platform = PlatformWithPrivileges({"x", "y"});
  EXPECT_TRUE(HasPrivilege("x", "pkg"));
  EXPECT_TRUE(
      Holds(platform, {LookUp({Call("package_info_create(pkg)"), Call("package_info_foreach_privilege_info()"),
                               kCallback.Info("### Have %s privilege ###", "x"), Call("package_info_destroy()")})}));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

TEST(Privilege, only_an_equal_text_is_the_privilege) {
  for (const char* declared : {"X", "x/", "", "xx", "/x"}) {
    Platform& platform = PlatformWithPrivileges({declared});
    EXPECT_FALSE(HasPrivilege("x", "pkg")) << declared;
    EXPECT_TRUE(Holds(platform, {LookUp({})}));
    EXPECT_TRUE(AllRecordsDestroyed(platform));
  }
}

TEST(Privilege, a_package_without_privileges_has_none) {
  Platform& platform = PlatformWithPrivileges({});
  EXPECT_FALSE(HasPrivilege("x", "pkg"));
  EXPECT_TRUE(Holds(platform, {LookUp({})}));
}

TEST(Privilege, a_privilege_declared_twice_is_told_twice) {
  Platform& platform = PlatformWithPrivileges({"x", "y", "x"});
  EXPECT_TRUE(HasPrivilege("x", "pkg"));
  EXPECT_TRUE(Holds(platform, {LookUp({kCallback.Info("### Have %s privilege ###", "x"),
                                       kCallback.Info("### Have %s privilege ###", "x")})}));
}

TEST(Privilege, the_callback_never_ends_the_iteration) {
  doubles::Reset();
  PrivilegeSearch search;
  search.privilege = "x";
  EXPECT_TRUE(privilege_info_cb("y", &search));
  EXPECT_FALSE(search.found);
  EXPECT_TRUE(privilege_info_cb("x", &search));
  EXPECT_TRUE(search.found);
  EXPECT_TRUE(privilege_info_cb("y", &search));
  EXPECT_TRUE(search.found);
}

TEST(Privilege, the_search_record_holds_the_flag_first_and_then_the_text) {
  PrivilegeSearch search;
  EXPECT_EQ(static_cast<void*>(&search), static_cast<void*>(&search.found));
  EXPECT_LT(static_cast<void*>(&search.found), static_cast<void*>(&search.privilege));
}

TEST(Privilege, a_package_that_cannot_be_asked_has_none_and_the_code_is_told) {
  for (const int code : {-1, 38, -1073741822}) {
    Platform& platform = PlatformWithPrivileges({"x"});
    platform.FailNext("package_info_create", code);
    EXPECT_FALSE(HasPrivilege("x", "pkg"));
    EXPECT_TRUE(Holds(platform, {LookUp({Call("package_info_create(pkg)"),
                                         kHasPrivilege.Error("package_info_create return error code : %d", code)})}));
  }
}

TEST(Privilege, an_unknown_package_has_none) {
  Platform& platform = PlatformWithPrivileges({"x"});
  EXPECT_FALSE(HasPrivilege("x", "unknown"));
  EXPECT_TRUE(Holds(platform, {LookUp({kHasPrivilege.Error("package_info_create return error code : %d", -1)})}));
}

TEST(Privilege, success_without_a_handle_is_the_error_code_zero_and_nothing_is_destroyed) {
  Platform& platform = PlatformWithPrivileges({"x"});
  platform.GiveNullNext("package_info_create");
  EXPECT_FALSE(HasPrivilege("x", "pkg"));
  EXPECT_TRUE(Holds(platform, {LookUp({Call("package_info_create(pkg)"),
                                       kHasPrivilege.Error("package_info_create return error code : %d", 0)})}));
}

TEST(Privilege, the_result_of_the_iteration_is_not_looked_at) {
  Platform& platform = PlatformWithPrivileges({"x"});
  platform.FailNext("package_info_foreach_privilege_info", -1);
  EXPECT_TRUE(HasPrivilege("x", "pkg"));
  EXPECT_TRUE(AllRecordsDestroyed(platform));
}

TEST(Privilege, debugging_is_the_app_debugging_privilege_of_the_platform_namespace) {
  Platform& platform = PlatformWithPrivileges({kDebuggingPrivilege});
  EXPECT_TRUE(isInDebuggingState("pkg"));
  EXPECT_TRUE(Holds(platform, {HavePrivilege(kDebuggingPrivilege)}));
  EXPECT_FALSE(isInDebuggingState("unknown"));

  PlatformWithPrivileges({kPlatformPrivilege, "http://" ORVEL_NAMESPACE_HOST "/privilege/internal/AppDebugging"});
  EXPECT_FALSE(isInDebuggingState("pkg"));
}

}  // namespace
}  // namespace unit
