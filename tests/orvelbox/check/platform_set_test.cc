// What check compares with, by list files and directories.
#include "orvelbox/check/platform_set.h"

#include <climits>

#include "orvelbox/desk/output.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/uris.h"

namespace orvelbox {
namespace {

using testing::UnorderedElementsAre;

const std::string kPlatform = "/usr/share/dotnet.orvel";

class PlatformSetTest : public DirectoryTest {
 protected:
  PlatformSet SetOf(const std::string& text) const {
    WriteFile(list_, text);
    return SetOfPlatform(list_);
  }
  // Without the list's name and ": " at the front.
  std::string ErrorOfList(const std::string& text) const {
    const std::string error = ErrorOf([&] { SetOf(text); });
    EXPECT_THAT(error, StartsWith(list_ + ": "));
    return error.substr(std::min(error.size(), list_.size() + 2));
  }

  const std::string list_ = dir_ / "tv.txt";
};

std::vector<std::string> DllsIn(const Files& files) {
  std::vector<std::string> dlls;
  files->listing().ForEachDll([&](const std::string& path, unsigned char) { dlls.push_back(path); });
  return dlls;
}

TEST_F(PlatformSetTest, a_list_names_the_platforms_assemblies_and_those_of_components) {
  const PlatformSet set =
      SetOf("\xef\xbb\xbf" + kPlatform + "/framework/F#~.dll\r\n# " + kPlatform + "/No.dll\n\n" + kPlatform +
            "/.hidden.dll\n" + kPlatform + "/D.dll\n" + kPlatform + "/D.dll/E.dll\n" +
            "/etc/No.dll\n/shared/res/No.dll\n/opt/a/shared/res/sub/A.dll\n/opt/b/shared/res/B.dll");
  EXPECT_THAT(DllsIn(set.assemblies), UnorderedElementsAre("framework/F#~.dll", ".hidden.dll", "D.dll/E.dll"));
  ASSERT_THAT(set.coba, ElementsAre(Pair("a", testing::_), Pair("b", testing::_)));
  EXPECT_EQ(set.coba.at("a").id + " " + set.coba.at("a").root, "a /opt/a");
  EXPECT_THAT(DllsIn(set.coba.at("a").files), ElementsAre("shared/res/sub/A.dll"));
  EXPECT_THAT(DllsIn(set.coba.at("b").files), ElementsAre("shared/res/B.dll"));
}

TEST_F(PlatformSetTest, a_line_of_a_list_that_is_no_plain_path_is_named) {
  const std::string longest = kPlatform + "/" + std::string(PATH_MAX - 2 - kPlatform.size(), 'x');
  EXPECT_EQ(SetOf(longest).assemblies->listing().dlls(), 0U);
  for (const std::string& line : {longest + "x", kPlatform + "//A.dll", kPlatform + "/./A.dll", kPlatform + "/a/..",
                                  kPlatform.substr(1), "/a" + std::string(1, '\0') + "/A.dll"}) {
    EXPECT_EQ(
        ErrorOfList("#\n" + line + "\n"),
        "line 2 (\"" + Printable(line) + "\") is no plain absolute path; write one path a line, as find prints them");
  }
}

TEST_F(PlatformSetTest, a_list_without_assemblies_or_with_a_package_twice_is_refused) {
  EXPECT_EQ(ErrorOfList("/opt/a/shared/res/A.dll"),
            "names no assemblies below " + kPlatform + "; list them on the device with: find " + kPlatform);
  EXPECT_EQ(ErrorOfList(kPlatform + "/A.dll\n/opt/a/shared/res/A.dll\n/opt/b/a/shared/res/A.dll\n"),
            "names the package a twice, in /opt/a and in /opt/b/a; leave one out");
}

TEST_F(PlatformSetTest, a_directory_must_hold_one_of_the_platforms) {
  EXPECT_EQ(ErrorOf([&] { SetOfPlatform(dir_.path()); }),
            dir_.path().string() +
                ": no platform assemblies; name a directory that holds netcoreapp/, framework/, d.pc/ or tvappapi/");
  EXPECT_EQ(ErrorOf([&] { SetOfPlatform(dir_ / "no"); }),
            (dir_ / "no") + ": no such file or directory; name a list file or a directory of platform assemblies");
  for (const std::string name : {"netcoreapp", "framework", "d.pc", "tvappapi"}) {
    WriteFile(dir_ / (name + "-only/" + name + "/A.dll"));
    EXPECT_THAT(DllsIn(SetOfPlatform(dir_ / (name + "-only")).assemblies), ElementsAre(name + "/A.dll"));
  }
}

TEST_F(PlatformSetTest, a_package_has_its_place_where_it_is_installed_or_in_the_read_write_root) {
  PlatformSet set;
  set.roots["a"] = "/opt/a";
  EXPECT_EQ(RootOnDevice(set, "a"), "/opt/a");
  EXPECT_EQ(RootOnDevice(set, "b"), "/opt/usr/globalapps/b");
}

TEST_F(PlatformSetTest, a_device_provides_its_platform_its_components_and_where_packages_are) {
  const host::Device device = host::CreateDevice(dir_ / "device");
  WriteFile(device.OnDesk(kPlatform + "/framework/F.dll"));
  WriteFile(device.OnDesk("/opt/c/shared/res/C.dll"));
  host::PackageStore store(device.Database(), host::PackageStore::Mode::kReadWrite);
  host::Package package;
  for (const std::string id : {"a", "c"}) {
    package.id = id;
    package.root = "/opt/" + id;
    package.applications = {{id + ".main", "", "", "", {{support::kCobaKey, id == "c" ? "true" : "false"}}}};
    store.Put(package);
  }
  const PlatformSet set = SetOfDevice(device);
  EXPECT_THAT(DllsIn(set.assemblies), ElementsAre("framework/F.dll"));
  EXPECT_EQ(RootOnDevice(set, "a"), "/opt/a");
  EXPECT_THAT(set.coba, ElementsAre(Pair("c", testing::_)));
  EXPECT_EQ(set.coba.at("c").id + " " + set.coba.at("c").root, "c /opt/c");
  EXPECT_THAT(DllsIn(set.coba.at("c").files), ElementsAre("shared/res/C.dll"));
}

TEST_F(PlatformSetTest, a_component_is_a_package_of_which_an_application_says_so) {
  host::Package package;
  package.applications.resize(2);
  for (const auto& [key, value] : {std::pair<std::string, std::string>{support::kCobaKey, "false"}, {"key", "true"}}) {
    package.applications[1].metadata.push_back({key, value});
  }
  EXPECT_FALSE(IsCobaPackage(package));
  package.applications[1].metadata.push_back({support::kCobaKey, "true"});
  EXPECT_TRUE(IsCobaPackage(package));
}

}  // namespace
}  // namespace orvelbox
