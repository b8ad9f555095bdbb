// Valid manifests; bad_input_test has the invalid ones.
#include "orvelbox/package/manifest.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

class ManifestFile : public DirectoryTest {
 protected:
  host::Package Read(const std::string& text) const {
    WriteFile(dir_ / kManifestName, text);
    return ReadManifest(dir_.path()).package;
  }
};

TEST_F(ManifestFile, everything_written_is_read) {
  const host::Package package = Read(
      "<manifest package='p' version='1.2' type='rpk' mainapp='two'>"
      "<ui-application appid='one' exec='One.dll' type='dotnet'><metadata key='k' "
      "value='v'/><metadata/></ui-application>"
      "<widget-application appid='two'/>"
      "<privileges><privilege> a\n</privilege><privilege/><privilege>b</privilege><privilege>a</privilege></privileges>"
      "</manifest>");
  EXPECT_EQ(package.id, "p");
  EXPECT_EQ(package.version, "1.2");
  EXPECT_EQ(package.type, "rpk");
  EXPECT_EQ(package.main_app_id, "two");
  EXPECT_THAT(package.privileges, ElementsAre("a", "b", "a"));
  ASSERT_EQ(package.applications.size(), 2U);
  EXPECT_EQ(package.applications[0].kind, "ui-application");
  EXPECT_EQ(package.applications[0].exec, "One.dll");
  EXPECT_EQ(package.applications[0].type, "dotnet");
  ASSERT_EQ(package.applications[0].metadata.size(), 2U);
  EXPECT_EQ(package.applications[0].metadata[0].key, "k");
  EXPECT_EQ(package.applications[0].metadata[0].value, "v");
  EXPECT_EQ(package.applications[1].kind, "widget-application");
}

TEST_F(ManifestFile, what_is_absent_has_a_default) {
  const host::Package package =
      Read("<manifest package='p'><service-application appid='one'/><ui-application appid='two'/></manifest>");
  EXPECT_EQ(package.version, "");
  EXPECT_EQ(package.type, "opk");
  EXPECT_EQ(package.main_app_id, "one");
}

TEST_F(ManifestFile, a_package_needs_no_application) {
  const host::Package package = Read("<manifest package='p'/>");
  EXPECT_THAT(package.applications, IsEmpty());
  EXPECT_EQ(package.main_app_id, "");
}

TEST_F(ManifestFile, a_name_with_a_prefix_is_another_name) {
  const host::Package package =
      Read("<manifest xmlns:x='urn:x' package='p'><x:ui-application appid='one'/><x:privileges/></manifest>");
  EXPECT_THAT(package.applications, IsEmpty());
}

TEST_F(ManifestFile, a_default_namespace_changes_nothing) {
  EXPECT_EQ(Read("<manifest xmlns='urn:x' package='p'><ui-application appid='one'/></manifest>").main_app_id, "one");
}

TEST_F(ManifestFile, a_doctype_is_not_loaded) {
  EXPECT_EQ(Read("<!DOCTYPE manifest SYSTEM 'file:///nowhere/manifest.dtd'><manifest package='p'/>").id, "p");
}

TEST_F(ManifestFile, the_longest_id_is_allowed) {
  EXPECT_EQ(Read("<manifest package='" + std::string(255, 'x') + "'/>").id.size(), 255U);
}

TEST_F(ManifestFile, the_parser_itself_prints_nothing) {
  testing::internal::CaptureStderr();
  EXPECT_THROW(Read("<manifest package='p'>&undeclared;<"), host::DeviceError);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PlacedAt, executables_lie_in_the_bin_directory_unless_absolute) {
  host::Package package;
  package.applications = {{"a", "", "", "A.dll", {}}, {"b", "", "", "/usr/bin/b", {}}, {"c", "", "", "", {}}};
  package = PlacedAt(package, "/root/p");
  EXPECT_EQ(package.root, "/root/p");
  EXPECT_EQ(package.applications[0].exec, "/root/p/bin/A.dll");
  EXPECT_EQ(package.applications[1].exec, "/usr/bin/b");
  EXPECT_EQ(package.applications[2].exec, "");
}

}  // namespace
}  // namespace orvelbox
