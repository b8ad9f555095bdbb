// Archives as packages: installed, upgraded, and refused without any change.
#include <sys/stat.h>

#include "tests/support/orvelbox_desk.h"
#include "tests/support/zip.h"

namespace e2e {
namespace {

class ArchiveE2e : public HookDesk {
 protected:
  std::string MakeArchive(const std::string& name, const std::vector<support::ZipEntry>& entries) const {
    support::WriteFile(dir_ / name, support::ZipOf(entries));
    return dir_ / name;
  }
};

TEST_F(ArchiveE2e, is_installed_and_upgraded_like_a_directory) {
  AddPlatformFile("framework/Json.dll");
  const std::string first =
      MakeArchive("first.opk", {{"orvel-manifest.xml", ManifestText("org.example.a", "1")}, {"bin/Json.dll", "mine"}});
  const std::string second =
      MakeArchive("second.opk", {{"orvel-manifest.xml", ManifestText("org.example.a", "2")}, {"bin/Own.dll", "own"}});
  EXPECT_THAT(RunExpecting(0, {"install", first}).out, HasSubstr("removed  bin/Json.dll: the platform has"));
  EXPECT_THAT(RunExpecting(0, {"upgrade", second}).out, StartsWith("upgraded org.example.a 1 to 2"));
  const std::string root = OnDesk("/opt/usr/globalapps");
  EXPECT_EQ(support::NamesIn(root), std::vector<std::string>{"org.example.a"});
  EXPECT_EQ(support::ReadFile(root + "/org.example.a/bin/Own.dll"), "own");
}

// None of these calls a hook.
class BadArchiveE2e : public ArchiveE2e {
 protected:
  void SetUp() override {}

  void ExpectRefusal(const std::string& command, const std::string& archive, const std::string& text) const {
    Desk::ExpectRefusal({command, archive}, {"orvelbox: " + archive, text});
  }
};

TEST_F(BadArchiveE2e, is_refused_in_one_line_and_nothing_is_left) {
  const support::ZipEntry manifest = {"orvel-manifest.xml", ManifestText("a", "1")};
  for (const char* command : {"install", "upgrade"}) {
    ExpectRefusal(command, MakeArchive("out.opk", {manifest, {"../../evil", "x"}}),
                  ": entry \"../../evil\" leads out of the package");
    ExpectRefusal(command, MakeArchive("link.opk", {manifest, {"l", "/etc", S_IFLNK | 0777}}),
                  ": entry \"l\" is a link");
  }
}

TEST_F(BadArchiveE2e, errors_in_its_manifest_name_the_archive) {
  ExpectRefusal("install", MakeArchive("a.opk", {{"orvel-manifest.xml", "<manifest>"}}),
                "a.opk/orvel-manifest.xml: not well-formed, line 1");
  ExpectRefusal("install", MakeArchive("b.opk", {{"bin/A.dll", "x"}}), "b.opk: no orvel-manifest.xml in it");
  ExpectRefusal("upgrade", MakeArchive("c.opk", {{"orvel-manifest.xml", ManifestText("a", "1")}}),
                "c.opk/orvel-manifest.xml: package a is not installed");
}

TEST_F(BadArchiveE2e, a_file_that_is_no_archive_is_named) {
  support::WriteFile(dir_ / "text.opk", "hello");
  ExpectRefusal("install", dir_ / "text.opk", ": no zip archive, cut off or damaged");
}

TEST_F(BadArchiveE2e, a_manifest_that_unpacks_to_far_too_much_is_refused) {
  support::WriteFile(dir_ / "bomb.opk", support::ZipOfZeros("orvel-manifest.xml", 2 << 20));
  const Result result = Run({"check", "--platform", OnDesk("/usr/share/dotnet.orvel"), dir_ / "bomb.opk"});
  EXPECT_THAT(result.err, HasSubstr("bomb.opk/orvel-manifest.xml: larger than 1048576 bytes"));
}

}  // namespace
}  // namespace e2e
