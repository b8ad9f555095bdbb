// Invalid requests: one clear line on standard error, the right exit status, and an unchanged device.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/unique_fd.h"
#include "platform/host/package_store.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

// No case here calls a hook, so none needs the fixed paths.
class BadInputE2e : public Desk {
 protected:
  void Register(const std::string& id, const std::string& app_id) const {
    host::Package package;
    package.id = id;
    package.type = "opk";
    package.root = "/opt/usr/globalapps/" + id;
    package.applications.push_back({app_id, "ui-application", "dotnet-inhouse", "", {}});
    host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
    support::WriteFile(device_.OnDesk(package.root) / "orvel-manifest.xml", ManifestText(id, "1"));
  }
};

struct BadManifest {
  const char* name;
  std::string text;
  const char* complaint;
};

class BadManifestE2e : public BadInputE2e, public testing::WithParamInterface<BadManifest> {};

TEST_P(BadManifestE2e, is_refused_by_install) {
  const std::string package = MakePackage("bad", GetParam().text);
  ExpectRefusal({"install", package}, {package + "/orvel-manifest.xml: ", GetParam().complaint, "; "});
}

TEST_P(BadManifestE2e, is_refused_by_upgrade) {
  Register("a", "a.main");
  const std::string package = MakePackage("bad", GetParam().text);
  ExpectRefusal({"upgrade", package}, {package + "/orvel-manifest.xml: ", GetParam().complaint, "; "});
}

INSTANTIATE_TEST_SUITE_P(
    manifest, BadManifestE2e,
    testing::Values(BadManifest{"not_well_formed", "<manifest package=\"a\">\n<ui-application></manifest>",
                                "not well-formed, line 2"},
                    BadManifest{"slash", "<manifest package=\"a/b\"/>", "package id \"a/b\" holds \"/\""},
                    BadManifest{
                        "entities",
                        "<!DOCTYPE manifest [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><manifest package=\"a\"/>",
                        "declares entities"}),
    [](const auto& parameters) { return parameters.param.name; });

TEST_F(BadInputE2e, a_directory_without_a_manifest_is_no_package) {
  const std::string directory = dir_ / "empty";
  std::filesystem::create_directory(directory);
  ExpectRefusal({"install", directory}, {directory + ": no orvel-manifest.xml in it, so it is no package; "});
}

TEST_F(BadInputE2e, a_missing_directory_is_named) {
  ExpectRefusal({"install", dir_ / "nowhere"}, {dir_ / "nowhere: no such directory; "});
}

TEST_F(BadInputE2e, a_manifest_that_is_no_file_is_named) {
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  std::filesystem::remove(package + "/orvel-manifest.xml");
  mkfifo((package + "/orvel-manifest.xml").c_str(), 0600);
  ExpectRefusal({"install", package}, {package + "/orvel-manifest.xml: cannot be read (no regular file); "});
}

TEST_F(BadInputE2e, a_special_file_in_a_package_is_named) {
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  mkfifo((package + "/pipe").c_str(), 0600);
  ExpectRefusal({"install", package}, {package + "/pipe: is no file, directory or symbolic link; "});
}

TEST_F(BadInputE2e, a_package_that_holds_the_device_is_refused) {
  support::WriteFile(dir_ / "orvel-manifest.xml", ManifestText("a", "1"));
  const Result result = RunExpecting(1, {"install", dir_.path().string()});
  EXPECT_THAT(result.err, HasSubstr(dir_.path().string() + ": holds the device itself"));
}

TEST_F(BadInputE2e, an_installed_package_is_not_installed_again) {
  Register("a", "a.main");
  const std::string package = MakePackage("a", ManifestText("a", "2"));
  ExpectRefusal({"install", package},
                {package + "/orvel-manifest.xml: package a is installed already; use upgrade, or uninstall it\n"});
}

TEST_F(BadInputE2e, a_package_that_is_not_installed_is_not_upgraded) {
  const std::string package = MakePackage("a", ManifestText("a", "2"));
  ExpectRefusal({"upgrade", package}, {package + "/orvel-manifest.xml: package a is not installed; use install"});
}

TEST_F(BadInputE2e, every_command_names_a_package_that_is_not_installed) {
  for (const char* command : {"remove", "uninstall", "recover", "clean", "cleanup", "undo", "show"}) {
    ExpectRefusal({command, "stranger"}, {"stranger: not installed; see what is with: orvelbox list"});
  }
}

TEST_F(BadInputE2e, an_application_of_another_package_is_named) {
  Register("owner", "shared.app");
  const std::string package =
      MakePackage("a", "<manifest package=\"a\"><ui-application appid=\"shared.app\"/></manifest>");
  ExpectRefusal({"install", package}, {"application id \"shared.app\" belongs to the installed package owner; "});
}

TEST_F(BadInputE2e, files_in_the_way_of_a_package_are_not_overwritten) {
  support::WriteFile(OnDesk("/opt/usr/globalapps/a/precious"), "mine");
  ExpectRefusal({"install", MakePackage("a", ManifestText("a", "1"))},
                {"/globalapps/a: is in the way, and belongs to no installed package; move it away and try again\n"});
}

TEST_F(BadInputE2e, a_device_of_a_newer_version_is_left_alone) {
  support::WriteFile(device_.ConfigFile(), R"({"format": 99, "read_write_root": "/opt/usr/globalapps"})");
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  ExpectRefusal({"install", package}, {device_.directory.string() + ": made by a newer orvelbox"});
  ExpectRefusal({"list"}, {"made by a newer orvelbox"});
}

TEST_F(BadInputE2e, a_database_of_a_newer_version_is_left_alone) {
  std::string database = support::ReadFile(device_.Database());
  ASSERT_GT(database.size(), 64U);
  database[62] = 77;  // the schema version in the file's header
  support::WriteFile(device_.Database(), database);
  support::WriteFile(OnDesk("/opt/usr/globalapps/.staging/a/rest"), "of a killed run");
  ExpectRefusal({"install", MakePackage("a", ManifestText("a", "1"))}, {device_.Database().string(), "newer"});
}

TEST_F(BadInputE2e, a_directory_that_is_no_device_is_named) {
  const Result result = RunExpecting(1, {"--device", dir_ / "elsewhere", "list"});
  EXPECT_THAT(result.err, AllOf(HasSubstr(dir_ / "elsewhere: no device there"), HasSubstr("orvelbox init")));
}

TEST_F(BadInputE2e, a_device_in_use_is_not_waited_for) {
  const UniqueFd lock(open(device_.LockFile().c_str(), O_RDWR | O_CLOEXEC));
  ASSERT_EQ(flock(lock.get(), LOCK_EX), 0);
  ASSERT_EQ(pwrite(lock.get(), "4711", 4, 0), 4);
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  ExpectRefusal({"install", package}, {device_.directory.string() + ": in use by another orvelbox (process 4711); wait "
                                                                    "for it, or use another device with --device\n"});
  for (const char* reader : {"list", "cache", "log"}) RunExpecting(0, {reader});
}

TEST_F(BadInputE2e, a_missing_plug_in_is_named_and_the_package_taken_back) {
  const auto before = DeviceState();
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  ExpectRefusal({"--plugin", dir_ / "no.so", "install", package}, {dir_ / "no.so: no such plug-in; build it"});
}

TEST_F(BadInputE2e, control_characters_of_names_do_not_reach_the_terminal) {
  ExpectRefusal({"show", "a\x1b[2J\nb"}, {"a\\x1b[2J\\nb: not installed"});
}

TEST_F(BadInputE2e, wrong_usage_is_told_from_failure) {
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{{},
                                                                                         {"frobnicate"},
                                                                                         {"install"},
                                                                                         {"list", "more"},
                                                                                         {"log", "--priority", "W"},
                                                                                         {"--bogus", "list"},
                                                                                         {"events"},
                                                                                         {"events", "clean"},
                                                                                         {"events", "clean:"},
                                                                                         {"events", "dance:a"}}) {
    const Result result = Run(arguments);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("orvelbox: "));
  }
  EXPECT_THAT(RunExpecting(2, {"events", "dance:a"}).err, HasSubstr("dance:a: no such event; there are INSTALL, "));
}

TEST_F(BadInputE2e, help_is_no_failure) {
  EXPECT_THAT(RunExpecting(0, {"--help"}).out, HasSubstr("uninstall"));
  EXPECT_THAT(RunExpecting(0, {"log", "--help"}).out, HasSubstr("--follow"));
}

TEST_F(BadInputE2e, output_that_cannot_be_written_is_a_failure) {
  Register("a", "a.main");
  const pid_t process = Start({"list"}, [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); });
  const Result result = WaitFor(process);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.err, "orvelbox: standard output cannot be written\n");
}

}  // namespace
}  // namespace e2e
