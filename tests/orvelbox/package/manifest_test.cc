// Reading manifests, and the refusal of invalid ones with their reasons.
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
      "<privileges><privilege> \t&#13;a\n&#13;\t "
      "</privilege><privilege/><privilege>b</privilege><privilege>a</privilege></privileges>"
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
  EXPECT_EQ(Read("<manifest package='" + std::string(255, 'X') + "'/>").id.size(), 255U);
}

TEST_F(ManifestFile, the_parser_itself_prints_nothing) {
  testing::internal::CaptureStderr();
  EXPECT_THROW(Read("<manifest package='p'>&undeclared;<"), host::DeviceError);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

struct BadManifest {
  const char* name;
  std::string text;
  std::string complaint;
};

class BadManifestFile : public ManifestFile, public testing::WithParamInterface<BadManifest> {};

TEST_P(BadManifestFile, is_refused_with_the_reason) {
  EXPECT_EQ(ErrorOf([&] { Read(GetParam().text); }), (dir_ / kManifestName) + ": " + GetParam().complaint);
}

constexpr const char* kNoId = "has no package id; give the <manifest> element a package=\"…\" attribute";
constexpr const char* kWayOut = "; choose another package id";
constexpr const char* kStructure = " holds \":\", \"[\" or \"]\", which structure the cache files";

std::string WithId(const std::string& id) { return "<manifest package=\"" + id + "\"/>"; }

INSTANTIATE_TEST_SUITE_P(
    manifest, BadManifestFile,
    testing::Values(
        BadManifest{"not_well_formed", "<manifest package=\"a\">\n<ui-application></manifest>",
                    "not well-formed, line 2: Opening and ending tag mismatch: ui-application line 2 and manifest; "
                    "mend the XML and try again"},
        BadManifest{"empty", "", "not well-formed, line 1: Document is empty; mend the XML and try again"},
        BadManifest{"another_root", "<packages package=\"a\"/>",
                    "its root element is not <manifest>; see the README for a manifest to begin with"},
        BadManifest{"no_package_id", "<manifest version=\"1\"/>", kNoId},
        BadManifest{"empty_package_id", WithId(""), kNoId},
        BadManifest{"slash", WithId("a/b"), std::string("package id \"a/b\" holds \"/\"") + kWayOut},
        BadManifest{"control_character", WithId("a&#9;b"),
                    std::string("package id \"a\tb\" holds a control character") + kWayOut},
        BadManifest{"high_control_character", WithId("a&#x9b;b"),
                    std::string("package id \"a\xc2\x9b"
                                "b\" holds a control character") +
                        kWayOut},
        BadManifest{"dot", WithId("."), std::string("package id \".\" begins with \".\"") + kWayOut},
        BadManifest{"hidden", WithId(".a"), std::string("package id \".a\" begins with \".\"") + kWayOut},
        BadManifest{"colon", WithId("a:b"), std::string("package id \"a:b\"") + kStructure + kWayOut},
        BadManifest{"bracket", WithId("[a"), std::string("package id \"[a\"") + kStructure + kWayOut},
        BadManifest{"closing_bracket", WithId("a]"), std::string("package id \"a]\"") + kStructure + kWayOut},
        BadManifest{"too_long", WithId(std::string(256, 'x')),
                    "the package id is longer than 255 bytes; choose a shorter one"},
        BadManifest{"no_application_id", "<manifest package=\"a\"><widget-application/></manifest>",
                    "a <widget-application> has no application id; give it an appid=\"…\""},
        BadManifest{"control_character_in_application",
                    "<manifest package=\"a\"><ui-application appid=\"x&#10;\"/></manifest>",
                    "application id \"x\n\" holds a control character; choose another one"},
        BadManifest{"application_id_twice",
                    "<manifest package=\"a\"><ui-application appid=\"x\"/><service-application "
                    "appid=\"x\"/></manifest>",
                    "application id \"x\" is there twice; give each application its own"},
        BadManifest{"foreign_main_application", "<manifest package=\"a\" mainapp=\"x\"/>",
                    "mainapp=\"x\" is none of its applications; name one of them"},
        BadManifest{"entities",
                    "<!DOCTYPE manifest [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><manifest package=\"a\"/>",
                    "declares entities; write their text out instead"},
        BadManifest{"too_large", "<manifest package=\"a\">" + std::string(std::size_t{1} << 20, ' ') + "</manifest>",
                    "larger than 1048576 bytes; leave out what describes no package"}),
    [](const auto& parameters) { return parameters.param.name; });

TEST_F(ManifestFile, the_largest_one_is_read) {
  const std::string text = "<manifest package='p'/>";
  EXPECT_EQ(Read(text + std::string((std::size_t{1} << 20) - text.size(), '\n')).id, "p");
}

TEST_F(ManifestFile, a_directory_without_one_is_no_package) {
  EXPECT_EQ(ErrorOf([&] { ReadManifest(dir_.path()); }),
            dir_.path().string() +
                ": no orvel-manifest.xml in it, so it is no package; name the directory that holds "
                "the manifest");
  EXPECT_EQ(ErrorOf([&] { ReadManifest(dir_.path() / "no"); }),
            (dir_ / "no") + ": no such directory; name the directory or the archive of a package");
  fs::create_symlink("/dev/null", dir_ / kManifestName);
  const std::string cannot = (dir_ / kManifestName) +
                             ": cannot be read (no regular file); put a readable manifest file "
                             "there";
  EXPECT_EQ(ErrorOf([&] { ReadManifest(dir_.path()); }), cannot);
  fs::remove(dir_ / kManifestName);
  fs::create_directory(dir_ / kManifestName);
  EXPECT_EQ(ErrorOf([&] { ReadManifest(dir_.path()); }), cannot);
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
