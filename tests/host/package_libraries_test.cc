// The package libraries with a device's database.
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "orvel/package_info.h"
#include "orvel/pkgmgr_info.h"
#include "orvel/pkgmgr_installer.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

class PackageLibraries : public testing::Test {
 protected:
  PackageLibraries() { device_.Install({SamplePackage("q"), SamplePackage("p")}); }
  const samples::EnvironmentDevice& device() const { return device_; }

 private:
  samples::EnvironmentDevice device_;
};

bool CollectPrivilege(const char* privilege, void* list) {
  static_cast<std::vector<std::string>*>(list)->push_back(privilege);
  return true;
}

bool CollectTwo(const char* privilege, void* list) {
  CollectPrivilege(privilege, list);
  return static_cast<std::vector<std::string>*>(list)->size() < 2;
}

int CollectApplication(pkgmgrinfo_appinfo_h handle, void* list) {
  char* package = nullptr;
  char* exec = nullptr;
  if (pkgmgrinfo_appinfo_get_pkgid(handle, &package) != 0 || pkgmgrinfo_appinfo_get_exec(handle, &exec) != 0) return -1;
  static_cast<std::vector<std::string>*>(list)->push_back(std::string(package) + " " + exec);
  return 0;
}

// A positive result does not end an enumeration.
int CollectPositively(pkgmgrinfo_appinfo_h handle, void* list) { return CollectApplication(handle, list) + 1; }

int CollectOne(pkgmgrinfo_appinfo_h handle, void* list) {
  CollectApplication(handle, list);
  return -1;
}

// The text that the function reads from a record; "none" when it fails.
std::string TextOf(int (*get)(void*, char**), void* record) {
  char* text = nullptr;
  return get(record, &text) == 0 ? text : "none";
}

std::vector<std::string> Filtered(const std::vector<host::MetadataEntry>& entries,
                                  pkgmgrinfo_app_list_cb callback = CollectApplication) {
  pkgmgrinfo_appinfo_metadata_filter_h filter = nullptr;
  EXPECT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_create(&filter));
  for (const auto& entry : entries) {
    EXPECT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_add(filter, entry.key.c_str(), entry.value.c_str()));
  }
  std::vector<std::string> list;
  EXPECT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_foreach(filter, callback, &list));
  EXPECT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_destroy(filter));
  return list;
}

TEST_F(PackageLibraries, privileges_come_in_the_manifests_order_repeats_included) {
  package_info_h handle = nullptr;
  ASSERT_EQ(0, package_info_create("p", &handle));
  std::vector<std::string> privileges;
  EXPECT_EQ(0, package_info_foreach_privilege_info(handle, CollectPrivilege, &privileges));
  EXPECT_EQ(0, package_info_destroy(handle));
  EXPECT_THAT(privileges, ElementsAre("z", "a", "z"));
}

TEST_F(PackageLibraries, the_callback_ends_the_iteration_of_privileges) {
  package_info_h handle = nullptr;
  ASSERT_EQ(0, package_info_create("p", &handle));
  std::vector<std::string> privileges;
  EXPECT_EQ(0, package_info_foreach_privilege_info(handle, CollectTwo, &privileges));
  package_info_destroy(handle);
  EXPECT_THAT(privileges, ElementsAre("z", "a"));
}

TEST_F(PackageLibraries, unknown_packages_and_applications_are_refused) {
  void* handle = nullptr;
  EXPECT_LT(package_info_create("none", &handle), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_pkginfo("none", &handle), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_usr_pkginfo("none", getuid(), &handle), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_appinfo("p", &handle), 0);
  EXPECT_EQ(nullptr, handle);
}

TEST_F(PackageLibraries, an_application_record_holds_the_texts_of_its_package) {
  pkgmgrinfo_appinfo_h handle = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("p.service", &handle));
  EXPECT_EQ("/opt/usr/globalapps/p", TextOf(pkgmgrinfo_appinfo_get_root_path, handle));
  EXPECT_EQ("p", TextOf(pkgmgrinfo_appinfo_get_pkgid, handle));
  EXPECT_EQ("/opt/usr/globalapps/p/bin/Service.dll", TextOf(pkgmgrinfo_appinfo_get_exec, handle));
  EXPECT_EQ(0, pkgmgrinfo_appinfo_destroy_appinfo(handle));
}

TEST_F(PackageLibraries, a_record_outlives_its_package) {
  pkgmgrinfo_appinfo_h handle = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("p.main", &handle));
  PackageStore(device().device().Database(), PackageStore::Mode::kReadWrite).Remove("p");
  EXPECT_EQ("p", TextOf(pkgmgrinfo_appinfo_get_pkgid, handle));
  EXPECT_EQ(0, pkgmgrinfo_appinfo_destroy_appinfo(handle));
}

TEST_F(PackageLibraries, the_first_metadata_entry_of_a_key_counts) {
  pkgmgrinfo_appinfo_h handle = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("p.main", &handle));
  char* text = nullptr;
  EXPECT_EQ(0, pkgmgrinfo_appinfo_get_metadata_value(handle, "mark", &text));
  EXPECT_STREQ("first", text);
  EXPECT_LT(pkgmgrinfo_appinfo_get_metadata_value(handle, "Mark", &text), 0);
  EXPECT_EQ(-1, pkgmgrinfo_appinfo_get_metadata_value(handle, nullptr, &text));
  pkgmgrinfo_appinfo_destroy_appinfo(handle);
}

TEST_F(PackageLibraries, a_package_record_gives_type_and_main_application_to_every_user) {
  pkgmgrinfo_pkginfo_h handle = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_pkginfo_get_usr_pkginfo("p", 5001, &handle));
  EXPECT_EQ("opk", TextOf(pkgmgrinfo_pkginfo_get_type, handle));
  EXPECT_EQ("p.main", TextOf(pkgmgrinfo_pkginfo_get_mainappid, handle));
  EXPECT_EQ(0, pkgmgrinfo_pkginfo_destroy_pkginfo(handle));
}

TEST_F(PackageLibraries, a_package_without_applications_has_no_main_one) {
  device().Install({{"bare", "1", "rpk", "/opt/usr/globalapps/bare", "", {}, {}}});
  pkgmgrinfo_pkginfo_h handle = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_pkginfo_get_pkginfo("bare", &handle));
  EXPECT_EQ("none", TextOf(pkgmgrinfo_pkginfo_get_mainappid, handle));
  EXPECT_EQ("rpk", TextOf(pkgmgrinfo_pkginfo_get_type, handle));
  pkgmgrinfo_pkginfo_destroy_pkginfo(handle);
}

TEST_F(PackageLibraries, a_filter_gives_the_applications_that_meet_every_demand) {
  EXPECT_THAT(Filtered({{"coba", "true"}}),
              ElementsAre("p /opt/usr/globalapps/p/bin/Main.dll", "q /opt/usr/globalapps/q/bin/Main.dll"));
  EXPECT_THAT(Filtered({{"coba", "true"}, {"only", "q"}}), ElementsAre("q /opt/usr/globalapps/q/bin/Main.dll"));
  EXPECT_THAT(Filtered({{"coba", "maybe"}}), IsEmpty());
  EXPECT_EQ(4u, Filtered({}).size());
}

TEST_F(PackageLibraries, only_a_negative_result_ends_the_enumeration) {
  EXPECT_EQ(4u, Filtered({}, CollectPositively).size());
  EXPECT_EQ(1u, Filtered({}, CollectOne).size());
}

TEST_F(PackageLibraries, the_callback_may_ask_for_packages_itself) {
  const auto ask = [](pkgmgrinfo_appinfo_h handle, void* list) {
    char* id = nullptr;
    pkgmgrinfo_pkginfo_h package = nullptr;
    if (pkgmgrinfo_appinfo_get_pkgid(handle, &id) != 0 || pkgmgrinfo_pkginfo_get_pkginfo(id, &package) != 0) return -1;
    static_cast<std::vector<std::string>*>(list)->push_back(id);
    return pkgmgrinfo_pkginfo_destroy_pkginfo(package);
  };
  EXPECT_THAT(Filtered({{"coba", "false"}}, ask), ElementsAre("p", "q"));
}

TEST_F(PackageLibraries, an_exception_of_a_callback_becomes_a_failure) {
  pkgmgrinfo_appinfo_metadata_filter_h filter = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_create(&filter));
  const auto fail = [](pkgmgrinfo_appinfo_h, void*) -> int { throw std::runtime_error("x"); };
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_foreach(filter, fail, nullptr), 0);
  pkgmgrinfo_appinfo_metadata_filter_destroy(filter);
}

TEST_F(PackageLibraries, null_arguments_are_refused) {
  void* handle = nullptr;
  char* text = nullptr;
  EXPECT_LT(package_info_create(nullptr, &handle), 0);
  EXPECT_LT(package_info_create("p", nullptr), 0);
  EXPECT_LT(package_info_foreach_privilege_info(nullptr, CollectPrivilege, nullptr), 0);
  EXPECT_LT(package_info_destroy(nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_create(nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_add(nullptr, "k", "v"), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_foreach(nullptr, CollectApplication, nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_destroy(nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_appinfo(nullptr, &handle), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_appinfo("p.main", nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_root_path(nullptr, &text), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_pkgid(nullptr, &text), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_exec(nullptr, &text), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_metadata_value(nullptr, "k", &text), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_destroy_appinfo(nullptr), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_pkginfo(nullptr, &handle), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_usr_pkginfo("p", 0, nullptr), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_mainappid(nullptr, &text), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_type(nullptr, &text), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_destroy_pkginfo(nullptr), 0);
  EXPECT_LT(pkgmgr_installer_info_get_target_uid(nullptr), 0);
}

TEST_F(PackageLibraries, null_places_for_a_text_are_refused) {
  void* application = nullptr;
  void* package = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_get_appinfo("p.main", &application));
  ASSERT_EQ(0, pkgmgrinfo_pkginfo_get_pkginfo("p", &package));
  EXPECT_LT(pkgmgrinfo_appinfo_get_root_path(application, nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_exec(application, nullptr), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_metadata_value(application, "mark", nullptr), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_mainappid(package, nullptr), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_type(package, nullptr), 0);
  pkgmgrinfo_appinfo_destroy_appinfo(application);
  pkgmgrinfo_pkginfo_destroy_pkginfo(package);
}

TEST_F(PackageLibraries, a_damaged_database_is_a_failure_not_a_crash) {
  WriteFile(device().device().Database(), std::string(5000, 'x'));
  void* handle = nullptr;
  EXPECT_LT(package_info_create("p", &handle), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_appinfo("p.main", &handle), 0);
}

TEST(PackageLibrariesWithoutDevice, look_ups_fail) {
  unsetenv(host::kDeviceVariable);
  void* handle = nullptr;
  EXPECT_LT(package_info_create("p", &handle), 0);
  EXPECT_LT(pkgmgrinfo_appinfo_get_appinfo("p.main", &handle), 0);
  EXPECT_LT(pkgmgrinfo_pkginfo_get_pkginfo("p", &handle), 0);
  pkgmgrinfo_appinfo_metadata_filter_h filter = nullptr;
  ASSERT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_create(&filter));
  EXPECT_LT(pkgmgrinfo_appinfo_metadata_filter_foreach(filter, CollectApplication, nullptr), 0);
  EXPECT_EQ(0, pkgmgrinfo_appinfo_metadata_filter_destroy(filter));
}

TEST(InstallerLibrary, an_installation_is_for_the_calling_user) {
  uid_t uid = getuid() + 1;
  EXPECT_EQ(0, pkgmgr_installer_info_get_target_uid(&uid));
  EXPECT_EQ(getuid(), uid);
}

}  // namespace
}  // namespace host_tests
