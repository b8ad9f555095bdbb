// The example tool, built in a new directory with the installed tree only, and run on a real device.
#include <gmock/gmock.h>

#include "platform/host/device.h"
#include "platform/host/package_store.h"
#include "tests/package/installed_tree.h"
#include "tests/support/command.h"
#include "tests/support/uris.h"

namespace package {
namespace {

namespace fs = std::filesystem;

host::Package PackageAt(const std::string& root, const std::vector<host::MetadataEntry>& metadata = {}) {
  const std::string id = fs::path(root).filename();
  const host::Application application{id + ".main", "ui-application", "dotnet", root + "/bin/Main.dll", metadata};
  return {id, "1.0", "opk", root, application.id, {application}, {}};
}

class InstalledTool : public InstalledTree {
 protected:
  InstalledTool() : device_(host::CreateDevice(InTestDirectory("device"))) {
    host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadWrite);
    store.Put(PackageAt("/opt/usr/globalapps/shop"));
    store.Put(PackageAt("/opt/usr/globalapps/component", {{support::kCobaKey, "true"}}));
    store.Put(PackageAt("/opt/usr/globalapps/driver", {{support::kDpcTypeKey, "orvelfxtv"}}));
    store.Put(PackageAt("/usr/apps/preloaded"));
  }

  // Copies the example's files from the sources.
  void CopyExample() const { fs::copy(SOURCE_DIRECTORY "/examples", InTestDirectory("tool")); }

  // The output of `tool` in the directory "tool"; `environment` are assignments.
  std::string Ask(const std::string& tool, const std::string& arguments, const std::string& environment = "") const {
    return support::OutputOf("env -u VARK_CROSSGEN2_ENABLED ORVELBOX_DEVICE='" + device_.directory.string() + "' " +
                             environment + " '" + InTestDirectory("tool/" + tool) + "' " + arguments);
  }

  void ExpectAnswersOnPackages(const std::string& tool) const {
    const std::string read_write = "installed read-write: yes\nskip ahead-of-time compilation: no\n";
    EXPECT_EQ(Ask(tool, "package shop"), read_write + "output below the package root: /shared/lib\n");
    EXPECT_EQ(Ask(tool, "package component"), read_write + "output below the package root: /shared/res\n");
    EXPECT_EQ(Ask(tool, "package driver"), read_write + "output below the package root: /shared/res/d.pc\n");
    EXPECT_EQ(Ask(tool, "package preloaded"),
              "installed read-write: no\nskip ahead-of-time compilation: yes\n"
              "output below the package root: /shared/lib\n");
    EXPECT_EQ(Ask(tool, "package shop", "VARK_CROSSGEN2_ENABLED=1"),
              "This is the code running inside the VARK.\ninstalled read-write: yes\n"
              "skip ahead-of-time compilation: yes\noutput below the package root: /shared/lib\n");
  }

  void ExpectAnswersOnCacheFiles(const std::string& tool) const {
    const std::string cache = device_.OnDesk(kCacheDirectory) / "TPA.txt";
    EXPECT_EQ(Ask(tool, "cache '" + cache + "'"), "crashed: no\n");
    support::WriteFile(cache, "[START]/opt/usr/globalapps/shop/bin/Main.dll");
    EXPECT_EQ(Ask(tool, "cache '" + cache + "'"), "crashed: yes\n(ended with 256)\n");
  }

  void ExpectRefusals(const std::string& tool) const {
    EXPECT_EQ(Ask(tool, "package none"),
              "launcher_tool: none: no such package; name one that is installed\n(ended with 512)\n");
    EXPECT_EQ(Ask(tool, "cache none"),
              "launcher_tool: none: No such file or directory; name a readable cache file\n(ended with 512)\n");
    for (const char* arguments : {"", "package", "cache a b", "other shop"}) {
      EXPECT_EQ(Ask(tool, arguments), "usage: launcher_tool package ID | launcher_tool cache FILE\n(ended with 512)\n");
    }
  }

 private:
  host::Device device_;
};

TEST_F(InstalledTool, is_built_through_pkg_config_and_answers) {
  CopyExample();
  EXPECT_EQ(InFolder("tool", "exec '" COMPILER "' -std=c++17 -Wall -Wextra " TOOL_FLAGS
                             " launcher_tool.cc $(pkg-config --cflags --libs morvath) "
                             "-Wl,-rpath,$(pkg-config --variable=libdir morvath) -o launcher_tool"),
            "");
  ExpectAnswersOnPackages("launcher_tool");
  ExpectAnswersOnCacheFiles("launcher_tool");
  ExpectRefusals("launcher_tool");
}

TEST_F(InstalledTool, is_built_through_the_cmake_package_and_answers) {
  CopyExample();
  const std::string output =
      InFolder("tool", "set -e; '" CMAKE_PROGRAM "' -S . -B build -DCMAKE_PREFIX_PATH='" + Prefix() +
                           "' -DCMAKE_CXX_COMPILER='" COMPILER "' -DCMAKE_CXX_FLAGS='" TOOL_FLAGS "'; '" CMAKE_PROGRAM
                           "' --build build");
  ASSERT_TRUE(support::IsThere(InTestDirectory("tool/build/launcher_tool"))) << output;
  ExpectAnswersOnPackages("build/launcher_tool");
  ExpectAnswersOnCacheFiles("build/launcher_tool");
  ExpectRefusals("build/launcher_tool");
}

}  // namespace
}  // namespace package
