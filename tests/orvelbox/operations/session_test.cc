// Operations that are refused before any hook is called, and the words about a whole lifecycle.
#include <fcntl.h>
#include <sys/file.h>

#include "base/unique_fd.h"
#include "orvelbox/operations/lifecycle.h"
#include "orvelbox/operations/operations.h"
#include "orvelbox/package/manifest.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

class SessionTest : public DirectoryTest {
 protected:
  SessionTest() { host::CreateDevice(settings_.device.directory); }

  void Register(const std::string& id) const {
    host::Package package;
    package.id = id;
    package.root = "/opt/usr/globalapps/" + id;
    package.applications = {{id + ".main", "ui-application", "dotnet", "", {}}};
    host::PackageStore(settings_.device.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
    WriteFile(settings_.device.OnDesk(package.root) / kManifestName);
  }
  void WriteManifest(const std::string& text) const { WriteFile(dir_.path() / "package" / kManifestName, text); }
  // What is wrong with the manifest, by INSTALL or UPGRADE.
  std::string Refused(Change (*operation)(const Session&, const fs::path&)) const {
    const Session session(settings_);
    const std::string file = dir_ / "package/orvel-manifest.xml: ";
    const std::string error = ErrorOf([&] { operation(session, dir_ / "package"); });
    EXPECT_THAT(error, StartsWith(file));
    return error.substr(std::min(error.size(), file.size()));
  }

  HookSettings settings_{{dir_.path() / "device"}, "", ""};
};

TEST_F(SessionTest, a_package_is_installed_once_and_upgraded_only_then) {
  WriteManifest("<manifest package='a'/>");
  EXPECT_EQ(Refused(Upgrade), "package a is not installed; use install");
  Register("a");
  EXPECT_EQ(Refused(Install), "package a is installed already; use upgrade, or uninstall it");
}

TEST_F(SessionTest, an_application_belongs_to_one_package) {
  Register("a");
  Register("b");
  WriteManifest("<manifest package='b'><ui-application appid='b.main'/><ui-application appid='a.main'/></manifest>");
  EXPECT_EQ(Refused(Upgrade),
            "application id \"a.main\" belongs to the installed package a; choose another application id, or uninstall "
            "a");
}

TEST_F(SessionTest, a_device_is_locked_and_its_holder_named_by_a_number) {
  const std::string file = settings_.device.LockFile();
  const UniqueFd lock(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  const std::string longest(23, '7');
  const std::pair<std::string, std::string> holders[] = {
      {"", ""}, {"47X1", ""}, {"x", ""}, {"4711", " (process 4711)"}, {longest, " (process " + longest + ")"}};
  for (const auto& [text, named] : holders) {
    WriteFile(file, text);
    EXPECT_EQ(ErrorOf([&] { Session session(settings_); }), settings_.device.directory.string() +
                                                                ": in use by another orvelbox" + named +
                                                                "; wait for it, or use another device with --device");
  }
}

TEST_F(SessionTest, the_lock_names_this_process_and_ends_with_the_session) {
  WriteFile(settings_.device.LockFile(), std::string(30, '7'));
  { const Session session(settings_); }
  EXPECT_EQ(ReadFile(settings_.device.LockFile()), std::to_string(getpid()));
  EXPECT_EQ(ErrorOf([&] { Session session(settings_); }), "no error");
}

TEST(Lifecycle, is_told_step_by_step) {
  Lifecycle lifecycle{"a.opk", {{"install", "", "", {}}, {"undo", "", "", {}}}};
  EXPECT_TRUE(lifecycle.Passed());
  EXPECT_THAT(DescribeLifecycle(lifecycle),
              ElementsAre("a.opk: lived through without a trace", "    install: done", "    undo: done"));
  EXPECT_EQ(ToJson(lifecycle), R"({"package":"a.opk","sound":true,"steps":[{"step":"install","problem":null,)"
                               R"("differences":[]},{"step":"undo","problem":null,"differences":[]}]})");
  lifecycle.steps[1].differences = {"+ /a"};
  EXPECT_FALSE(lifecycle.Passed());
  EXPECT_THAT(DescribeLifecycle(lifecycle),
              ElementsAre("a.opk: left traces, or failed; see the steps", "    install: done",
                          "    undo: done, but the device is not as it should be:", "      + /a"));
  lifecycle.steps[1] = {"undo", "bad", "worse", {}};
  EXPECT_FALSE(lifecycle.Passed());
  EXPECT_THAT(DescribeLifecycle(lifecycle), Contains("    undo: bad"));
  EXPECT_THAT(ToJson(lifecycle), HasSubstr(R"("sound":false,)"));
  EXPECT_THAT(ToJson(lifecycle), HasSubstr(R"({"step":"undo","problem":"bad","differences":[]})"));
}

}  // namespace
}  // namespace orvelbox
