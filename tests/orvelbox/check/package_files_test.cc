// The files of packages in directories and in archives: links, sizes and versions.
#include "orvelbox/check/package_files.h"

#include <cerrno>
#include <cstring>

#include "tests/orvelbox/frame.h"
#include "tests/support/assembly.h"
#include "tests/support/zip.h"

namespace orvelbox {
namespace {

class PackageFilesTest : public DirectoryTest {
 protected:
  // The files that the plug-in's walk finds when it begins at `directory`.
  std::vector<std::string> Walked(const std::string& directory) const {
    std::vector<std::string> paths;
    const auto visit = [&](const ListedFile& file) { paths.push_back(file.Path()); };
    WalkOver(FilesIn(dir_.path())->listing(), "/root")("/root/" + directory, visit, 10);
    return paths;
  }
};

std::string Told(const DllCopy& copy) {
  return (copy.size ? std::to_string(*copy.size) : "none") + " " + (copy.version ? ToString(*copy.version) : "none");
}

TEST_F(PackageFilesTest, directories_that_are_opened_by_path_are_found_through_links) {
  WriteFile(dir_ / "real/A.dll");
  fs::create_directory(dir_ / "shared");
  for (const std::string link : {"netcoreapp", "framework", "d.pc", "tvappapi", "lib", "shared/res"}) {
    fs::create_directory_symlink(dir_ / "real", dir_ / link);
    EXPECT_THAT(Walked(link), ElementsAre("/root/" + link + "/A.dll"));
  }
  fs::create_directory_symlink(dir_ / "real", dir_ / "other");
  EXPECT_THAT(Walked("other"), IsEmpty());
  fs::remove_all(dir_ / "shared");
  WriteFile(dir_ / "real/res/B.dll");
  fs::create_directory_symlink(dir_ / "real", dir_ / "shared");
  EXPECT_THAT(Walked("shared/res"), ElementsAre("/root/shared/res/B.dll"));
}

TEST_F(PackageFilesTest, links_that_lead_to_no_directory_are_not_followed) {
  WriteFile(dir_ / "bin/A.dll");
  fs::create_symlink("nowhere", dir_ / "lib");
  fs::create_symlink("bin/A.dll", dir_ / "framework");
  EXPECT_THAT(Walked("."), IsEmpty());
  EXPECT_THAT(Walked(""), ElementsAre("/root/bin/A.dll"));
}

TEST_F(PackageFilesTest, what_is_not_there_has_no_facts_and_what_is_no_assembly_no_version) {
  WriteFile(dir_ / "A.dll", "text");
  const Files files = FilesIn(dir_.path());
  EXPECT_EQ(Told(files->FactsOf("A.dll")), "4 none");
  EXPECT_EQ(Told(files->FactsOf("B.dll")), "none none");
  EXPECT_EQ(FilesIn(dir_ / "nowhere")->listing().dlls(), 0U);
  EXPECT_THAT(ErrorOf([&] { FilesIn(dir_ / "A.dll"); }),
              HasSubstr(std::string("A.dll/: cannot read: ") + std::strerror(ENOTDIR)));
}

// The rows in front of the version keep it away from the headers.
TEST_F(PackageFilesTest, a_version_is_read_from_an_archive_as_from_a_directory) {
  const std::string manifest = "<manifest package=\"a\" version=\"1\"/>";
  for (const std::uint32_t rows : {1U, 300U, 400U, 700U, 800U, 900U, 1600U, 2500U, 60'000U, 838'700U}) {
    const std::string dll = support::AssemblyOf({1, 2, 3, 4}, {0, {{0x00, rows, 10}}});
    WriteFile(dir_ / "package/bin/A.dll", dll);
    WriteFile(dir_ / "package/orvel-manifest.xml", manifest);
    WriteFile(
        dir_ / "package.opk",
        support::ZipOf({{"orvel-manifest.xml", manifest}, {"lib/A.dll", "text"}, {"bin/A.dll", dll}, {"Z.dll", ""}}));
    const std::string expected = std::to_string(dll.size()) + " 1.2.3.4";
    EXPECT_EQ(Told(OpenPackage(dir_ / "package").files->FactsOf("bin/A.dll")), expected) << rows;
    const Files packed = OpenPackage(dir_ / "package.opk").files;
    EXPECT_EQ(Told(packed->FactsOf("bin/A.dll")), expected) << rows;
    EXPECT_EQ(Told(packed->FactsOf("lib/A.dll")), "4 none");
    EXPECT_EQ(Told(packed->FactsOf("Z.dll")), "0 none");
  }
}

// The header of the metadata stands behind them, so that after it the reader has to go back.
std::string WithHeaderAtItsEnd(std::string dll) {
  constexpr std::uint32_t kSection = 0x200;
  constexpr std::uint32_t kHeaderSize = 72;
  const auto put = [&dll](std::size_t at, std::size_t number) {
    for (std::size_t i = 0; i < 4; ++i) dll[at + i] = static_cast<char>(number >> (8 * i) & 0xffU);
  };
  const std::string header = dll.substr(kSection, kHeaderSize);
  dll += std::string(100'000, '\0') + header;
  put(0x148, dll.size() - kSection);                         // the size of the section
  put(0x128, 0x2000 + dll.size() - kSection - kHeaderSize);  // the address of the header
  return dll;
}

TEST_F(PackageFilesTest, an_archive_is_not_read_backwards) {
  const std::string near = WithHeaderAtItsEnd(support::AssemblyOf({1, 2, 3, 4}));
  const std::string far = WithHeaderAtItsEnd(support::AssemblyOf({1, 2, 3, 4}, {0, {{0x00, 2000, 10}}}));
  WriteFile(dir_ / "far.dll", far);
  WriteFile(dir_ / "a.opk", support::ZipOf({{"orvel-manifest.xml", "<manifest package=\"a\" version=\"1\"/>"},
                                            {"far.dll", far},
                                            {"near.dll", near}}));
  const Files packed = OpenPackage(dir_ / "a.opk").files;
  EXPECT_EQ(Told(packed->FactsOf("near.dll")), std::to_string(near.size()) + " 1.2.3.4");
  EXPECT_EQ(Told(packed->FactsOf("far.dll")), std::to_string(far.size()) + " none");
  EXPECT_EQ(Told(FilesIn(dir_.path())->FactsOf("far.dll")), std::to_string(far.size()) + " 1.2.3.4");
}

TEST_F(PackageFilesTest, no_more_than_eight_mebibytes_of_a_dll_are_unpacked) {
  const std::string dll = support::AssemblyOf({1, 2, 3, 4}, {0, {{0x00, 838'900, 10}}});
  WriteFile(dir_ / "a.opk",
            support::ZipOf({{"orvel-manifest.xml", "<manifest package=\"a\" version=\"1\"/>"}, {"A.dll", dll}}));
  EXPECT_EQ(Told(OpenPackage(dir_ / "a.opk").files->FactsOf("A.dll")), std::to_string(dll.size()) + " none");
}

}  // namespace
}  // namespace orvelbox
