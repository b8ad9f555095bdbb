// Orvelbox.Check.targets in a real build: what it says, when it fails the build, and that nothing is done twice.
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

// How a command with exit status 1 is told of.
constexpr const char* kFailed = "(ended with 256)";

class MsbuildE2e : public Desk {
 protected:
  void SetUp() override {
    Desk::SetUp();
    support::WriteFile(dir_ / "tv.txt", "/usr/share/dotnet.orvel/framework/Json.dll\n");
    support::WriteFile(dir_ / "Shop.proj", R"(<Project xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <PropertyGroup>
    <OrvelboxPackage>packages/shop</OrvelboxPackage>
    <OrvelboxPlatform>tv.txt</OrvelboxPlatform>
  </PropertyGroup>
  <Target Name="Build"><MakeDir Directories="obj" /></Target>
  <Import Project=")" ORVELBOX_TARGETS R"(" />
  <PropertyGroup>
    <IntermediateOutputPath>obj/</IntermediateOutputPath>
  </PropertyGroup>
</Project>)");
  }

  // What a build prints that is no matter of course.
  std::string Build(const std::string& properties = "/p:OrvelboxTool=" ORVELBOX_PROGRAM) const {
    return support::OutputOf("cd " + dir_.path().string() + " && HOME=$PWD xbuild /nologo /verbosity:quiet " +
                             properties + " Shop.proj");
  }

  void MakeShop(const std::string& manifest = "") const {
    MakePackage("shop", ManifestText("org.example.shop", "1", "", manifest), {{"Json.dll", ""}, {"Own.dll", ""}});
  }
};

TEST_F(MsbuildE2e, duplicates_are_warnings_until_something_changes) {
  MakeShop();
  const auto duplicate = AllOf(HasSubstr("packages/shop/Json.dll: warning ORVEL1001: Json.dll duplicates "
                                         "/usr/share/dotnet.orvel/framework/Json.dll; the install removes it."),
                               Not(HasSubstr(kFailed)));
  EXPECT_THAT(Build(), duplicate);
  EXPECT_EQ(Build(), "");
  EXPECT_TRUE(support::IsThere(dir_ / "obj/orvelbox-check.stamp")) << "though obj/ is set after the import";
  std::filesystem::remove(dir_ / "packages/shop/Own.dll");
  EXPECT_THAT(Build(), duplicate);
  EXPECT_EQ(Build(), "");
  support::WriteFile(dir_ / "tv.txt", "/usr/share/dotnet.orvel/framework/Other.dll\n");
  std::filesystem::last_write_time(dir_ / "tv.txt",
                                   std::filesystem::file_time_type::clock::now() + std::chrono::seconds(2));
  EXPECT_EQ(Build(), "");
}

TEST_F(MsbuildE2e, warnings_fail_the_build_when_they_are_to) {
  MakeShop();
  const std::string as_errors = "/p:OrvelboxTool=" ORVELBOX_PROGRAM " /p:OrvelboxWarningsAsErrors=true";
  for (int i = 0; i < 2; ++i) EXPECT_THAT(Build(as_errors), AllOf(HasSubstr("ORVEL1001"), HasSubstr(kFailed)));
}

TEST_F(MsbuildE2e, an_install_that_would_fail_fails_the_build) {
  MakeShop(DebuggingPrivileges());
  EXPECT_THAT(Build(), AllOf(HasSubstr("Json.dll: error ORVEL1001: "), HasSubstr(kFailed)));
}

TEST_F(MsbuildE2e, a_package_that_cannot_be_read_fails_the_build) {
  EXPECT_THAT(Build(), AllOf(HasSubstr("packages/shop: error ORVEL1003: "), HasSubstr(kFailed)));
}

TEST_F(MsbuildE2e, no_name_is_read_by_a_shell) {
  MakeShop();
  std::filesystem::rename(dir_ / "packages/shop", dir_ / "packages/`touch read`'$HOME");
  EXPECT_THAT(Build("/p:OrvelboxTool=" ORVELBOX_PROGRAM " \"/p:OrvelboxPackage=packages/\\`touch read\\`'\\$HOME\""),
              HasSubstr("warning ORVEL1001"));
  EXPECT_FALSE(support::IsThere(dir_ / "read"));
}

TEST_F(MsbuildE2e, a_missing_tool_or_platform_is_one_warning) {
  MakeShop();
  const std::string without_tool = Build("/p:OrvelboxTool=/nowhere/orvelbox");
  EXPECT_THAT(without_tool, AllOf(HasSubstr("warning ORVEL1004: "), HasSubstr("no orvelbox at /nowhere/orvelbox"),
                                  Not(HasSubstr(kFailed))));
  EXPECT_EQ(support::Lines(without_tool).size(), 1U);
  EXPECT_THAT(Build("/p:OrvelboxPlatform= /p:OrvelboxTool=" ORVELBOX_PROGRAM), HasSubstr("warning ORVEL1005: "));
}

TEST_F(MsbuildE2e, it_can_be_switched_off) {
  MakeShop();
  EXPECT_EQ(Build("/p:OrvelboxCheck=false"), "");
}

}  // namespace
}  // namespace e2e
