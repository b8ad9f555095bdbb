// The files of the installed tree.
#include <gmock/gmock.h>

#include "tests/package/installed_tree.h"
#include "tests/support/command.h"

namespace package {
namespace {

using testing::HasSubstr;
using testing::Not;

class InstalledFiles : public InstalledTree {
 protected:
  // The headers of `source`, as paths below the installed include directory.
  static std::set<std::string> HeadersOf(const std::string& source, const std::string& folder) {
    std::set<std::string> headers;
    for (const std::string& name : support::NamesIn(SOURCE_DIRECTORY "/" + source + "/" + folder)) {
      headers.insert(INCLUDE_DIRECTORY "/" + folder + "/" + name);
    }
    return headers;
  }

  // The run path of an installed library; empty when it has none.
  std::string RunPath(const std::string& library) const {
    return support::OutputOf(READELF_PROGRAM " -d '" + Libraries() + "/" + library +
                             "' | sed -n 's/.*(RUNPATH).*\\[\\(.*\\)\\].*/\\1/p'");
  }
};

TEST_F(InstalledFiles, the_plugin_component_is_the_two_libraries) {
  EXPECT_EQ(FilesBelow(Install("plugin")),
            (std::set<std::string>{LIBRARY_DIRECTORY "/libmorvath.so", LIBRARY_DIRECTORY "/libquarnel_util.so"}));
}

TEST_F(InstalledFiles, the_development_component_is_the_headers_and_how_to_use_them) {
  std::set<std::string> expected = HeadersOf("include", "morvath");
  for (const char* file :
       {"pkgconfig/morvath.pc", "cmake/morvath/morvath-config.cmake", "cmake/morvath/morvath-config-version.cmake"}) {
    expected.insert(std::string(LIBRARY_DIRECTORY "/") + file);
  }
  EXPECT_EQ(FilesBelow(Install("development")), expected);
}

TEST_F(InstalledFiles, the_host_component_is_the_host_platform_and_orvelbox) {
  std::set<std::string> expected = HeadersOf("platform/include", "orvel");
  for (const char* name :
       {"dlog", "trace", "aul", "package_info", "pkgmgr_info", "pkgmgr_installer", "ovplatform", "smack"}) {
    expected.insert(std::string(LIBRARY_DIRECTORY "/liborvel_") + name + ".so");
  }
  expected.insert({LIBRARY_DIRECTORY "/dotnet-loader-inhouse", PROGRAM_DIRECTORY "/orvelbox"});
  expected.insert({"share/orvelbox/Orvelbox.Check.targets", "share/man/man1/orvelbox.1.gz",
                   "share/bash-completion/completions/orvelbox", "share/zsh/vendor-completions/_orvelbox",
                   "share/fish/vendor_completions.d/orvelbox.fish"});
  EXPECT_EQ(FilesBelow(Install("host")), expected);
}

TEST_F(InstalledFiles, the_libraries_find_each_other_wherever_they_lie) {
  EXPECT_EQ(RunPath("libmorvath.so"), "$ORIGIN\n");
  EXPECT_EQ(RunPath("libquarnel_util.so"), "$ORIGIN\n");
  EXPECT_EQ(RunPath("liborvel_pkgmgr_info.so"), "");
}

TEST_F(InstalledFiles, the_descriptions_name_neither_the_build_nor_the_prefix) {
  for (const char* file : {"pkgconfig/morvath.pc", "cmake/morvath/morvath-config.cmake"}) {
    const std::string text = support::ReadFile(Libraries() + "/" + file);
    for (const std::string& place : {std::string(BUILD_DIRECTORY), std::string(SOURCE_DIRECTORY), Prefix()}) {
      EXPECT_THAT(text, Not(HasSubstr(place))) << file;
    }
  }
}

TEST_F(InstalledFiles, pkg_config_and_cmake_tell_the_interfaces_version) {
  EXPECT_EQ(InFolder("new", "pkg-config --modversion morvath"), InterfaceVersion() + "\n");
  support::WriteFile(InTestDirectory("new/CMakeLists.txt"),
                     "cmake_minimum_required(VERSION 3.25)\nproject(asks LANGUAGES NONE)\n"
                     "find_package(morvath CONFIG)\nmessage(\"found ${morvath_VERSION}\")\n"
                     "find_package(morvath 99.0 CONFIG REQUIRED)\n");
  const std::string output =
      InFolder("new", "'" CMAKE_PROGRAM "' -S . -B build -DCMAKE_PREFIX_PATH='" + Prefix() + "'");
  EXPECT_THAT(output, HasSubstr("found " + InterfaceVersion() + "\n"));
  EXPECT_THAT(output, HasSubstr("requested version \"99.0\""));
}

TEST_F(InstalledFiles, the_cmake_package_without_the_platform_says_what_is_missing) {
  const std::string prefix = Install("plugin");
  support::OutputOf("cp -R '" + Install("development") + "/.' '" + prefix + "'");
  support::WriteFile(
      InTestDirectory("new/CMakeLists.txt"),
      "cmake_minimum_required(VERSION 3.25)\nproject(asks LANGUAGES NONE)\nfind_package(morvath REQUIRED)\n");
  const std::string output = InFolder("new", "'" CMAKE_PROGRAM "' -S . -B build -Dmorvath_DIR='" + prefix +
                                                 "/" LIBRARY_DIRECTORY "/cmake/morvath' -DCMAKE_FIND_ROOT_PATH='" +
                                                 prefix + "' -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY");
  EXPECT_THAT(output, HasSubstr("install the component"));
}

TEST_F(InstalledFiles, every_public_header_compiles_on_its_own) {
  for (const std::string& name : support::NamesIn(Headers() + "/morvath")) {
    support::WriteFile(InTestDirectory("new/header.cc"), "#include <morvath/" + name + ">\n");
    EXPECT_EQ(
        InFolder("new", "exec '" COMPILER
                        "' -std=c++11 -fsyntax-only -Wall -Wextra -Werror $(pkg-config --cflags morvath) header.cc"),
        "")
        << name;
  }
}

}  // namespace
}  // namespace package
