// The two directory walkers.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "morvath/platform_utils.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

using Seen = std::vector<std::pair<std::string, std::string>>;

FileReader Into(Seen& seen) {
  return [&seen](const std::string& path, const std::string& name) { seen.emplace_back(path, name); };
}

Seen ScanFiles(const std::string& path, unsigned int depth = 10) {
  Seen seen;
  scanFilesInDirExcludeSymlink(path, Into(seen), depth);
  return seen;
}

Seen Sorted(Seen seen) {
  std::sort(seen.begin(), seen.end());
  return seen;
}

// The paths below `root`, sorted.
std::vector<std::string> PathsBelow(const TempDir& root, const Seen& seen) {
  std::vector<std::string> paths;
  for (const auto& [path, name] : Sorted(seen)) paths.push_back(path.substr(root.path().string().size() + 1));
  return paths;
}

FRESH_TEST(Scan, files_are_reported_with_full_path_and_bare_name) {
  const TempDir root;
  WriteFile(root / "A.dll");
  WriteFile(root / "b.JSON");
  const Seen expected = {{root / "A.dll", "A.dll"}, {root / "b.JSON", "b.JSON"}};
  EXPECT_EQ(expected, Sorted(ScanFiles(root.path().string())));
  EXPECT_EQ(expected, Sorted(ScanFiles(root.path().string() + "/"))) << "a trailing slash changes no path";
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(Scan, the_depth_counts_levels_the_first_one_included) {
  const TempDir root;
  std::string level;
  for (int i = 0; i < 13; ++i) {
    WriteFile(root / (level + "f"));
    level += "d/";
  }
  const std::pair<unsigned int, std::size_t> rows[] = {{0, 1},   {1, 1},   {2, 2},        {3, 3},
                                                       {10, 10}, {13, 13}, {UINT_MAX, 13}};
  for (const auto& [depth, files] : rows) {
    const Seen seen = ScanFiles(root.path().string(), depth);
    ASSERT_EQ(files, seen.size()) << depth;
    EXPECT_EQ(std::count(seen.back().first.begin(), seen.back().first.end(), '/'),
              std::count(seen.front().first.begin(), seen.front().first.end(), '/') + static_cast<long>(files) - 1);
  }
}

// Files of a directory in the order of its listing, then its subdirectories in that order.
void WalkInListingOrder(const fs::path& directory, Seen& seen) {
  std::vector<fs::path> subdirectories;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    if (entry.is_directory()) {
      subdirectories.push_back(entry.path());
    } else {
      seen.emplace_back(entry.path().string(), entry.path().filename().string());
    }
  }
  for (const fs::path& subdirectory : subdirectories) WalkInListingOrder(subdirectory, seen);
}

TEST(Scan, all_files_of_a_directory_come_before_its_subdirectories_depth_first_in_listing_order) {
  const TempDir root;
  for (const char* file : {"z", "a", "m", "d1/f", "d1/e/f", "d1/e/g", "d2/f", "d2/e/f", "d3/x/y/f", "d3/f", "d0/f"}) {
    WriteFile(root / file);
  }
  Seen expected;
  WalkInListingOrder(root.path(), expected);
  ASSERT_EQ(11u, expected.size());
  EXPECT_EQ(expected, ScanFiles(root.path().string()));
}

TEST(Scan, a_link_is_reported_under_its_own_name_and_never_walked) {
  const TempDir root;
  const TempDir elsewhere;
  WriteFile(elsewhere / "A.dll");
  fs::create_symlink(elsewhere / "A.dll", root / "link.dll");
  fs::create_symlink(elsewhere.path(), root / "directory");
  fs::create_symlink(elsewhere / "gone", root / "dangling");
  fs::create_symlink("loop", root / "loop");
  EXPECT_EQ((Seen{{root / "directory", "directory"}, {root / "link.dll", "link.dll"}}),
            Sorted(ScanFiles(root.path().string())));
}

TEST(Scan, pipes_and_sockets_and_links_to_them_are_passed_over) {
  const TempDir root;
  support::MakePipe(root / "pipe");
  support::MakeSocket(root / "socket");
  fs::create_symlink("pipe", root / "link to pipe");
  WriteFile(root / "file");
  EXPECT_EQ((Texts{"file"}), PathsBelow(root, ScanFiles(root.path().string())));
}

TEST(Scan, directories_that_begin_with_a_dot_are_walked) {
  const TempDir root;
  for (const char* file : {".hidden/f", "..more/f", ".../f", ".file"}) WriteFile(root / file);
  EXPECT_EQ((Texts{".../f", "..more/f", ".file", ".hidden/f"}), PathsBelow(root, ScanFiles(root.path().string())));
}

TEST(Scan, a_path_with_the_assembly_cache_link_text_is_not_entered) {
  const TempDir root;
  for (const char* file : {".sac_symlink/f", "a/.sac_symlink/y/f", "x.sac_symlinky/f", "a/f", ".SAC_SYMLINK/f",
                           "sac_symlink/f", "f.sac_symlink.dll"}) {
    WriteFile(root / file);
  }
  EXPECT_EQ((Texts{".SAC_SYMLINK/f", "a/f", "f.sac_symlink.dll", "sac_symlink/f"}),
            PathsBelow(root, ScanFiles(root.path().string())));
  EXPECT_TRUE(ScanFiles(root / ".sac_symlink").empty());
  EXPECT_TRUE(ScanFiles(root / "a/.sac_symlink/y").empty());
}

FRESH_TEST(Scan, without_entry_types_every_entry_is_reported_and_none_descended_into) {
  const TempDir root;
  WriteFile(root / "f");
  WriteFile(root / "sub/f2");
  fs::create_symlink("gone", root / "dangling");
  fs::create_symlink("f", root / "link");
  support::MakePipe(root / "pipe");
  interposed::Now().entry_types_unknown = true;
  EXPECT_EQ(
      (Seen{{root / ".", "."}, {root / "..", ".."}, {root / "f", "f"}, {root / "link", "link"}, {root / "sub", "sub"}}),
      Sorted(ScanFiles(root.path().string())));
}

// The paths below `root` that a walk over it examines, sorted.
Texts ExaminedByWalk(const TempDir& root) {
  interposed::Files().examined.clear();
  ScanFiles(root.path().string());
  const std::string start = root.path().string() + "/";
  Texts paths;
  for (const std::string& path : interposed::Files().examined) {
    if (path.rfind(start, 0) == 0) paths.push_back(path.substr(start.size()));
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

FRESH_TEST(Scan, links_alone_are_examined_where_the_listing_tells_the_types_and_every_entry_where_it_does_not) {
  const TempDir root;
  for (const char* file : {"A.dll", "sub/B.dll"}) WriteFile(root / file);
  support::MakePipe(root / "pipe");
  fs::create_symlink("A.dll", root / "link");
  fs::create_symlink("gone", root / "sub/dangling");
  EXPECT_EQ((Texts{"link", "sub/dangling"}), ExaminedByWalk(root));
  interposed::Now().entry_types_unknown = true;
  EXPECT_EQ((Texts{".", "..", "A.dll", "link", "pipe", "sub"}), ExaminedByWalk(root));
}

FRESH_TEST(Scan, a_directory_that_cannot_be_opened_yields_nothing_and_no_message) {
  const TempDir root;
  WriteFile(root / "file");
  EXPECT_TRUE(ScanFiles(root / "missing").empty());
  EXPECT_TRUE(ScanFiles(root / "file").empty());
  EXPECT_TRUE(ScanFiles("").empty());
  EXPECT_TRUE(Holds(platform, Steps{}));
}

TEST(Scan, what_the_reader_throws_leaves_no_directory_open) {
  const TempDir root;
  WriteFile(root / "sub/f");
  const FileReader reader = [](const std::string&, const std::string&) { throw std::runtime_error("no more"); };
  const auto open_before = support::NamesIn("/proc/self/fd");
  EXPECT_THROW(scanFilesInDirExcludeSymlink(root.path().string(), reader, 10), std::runtime_error);
  EXPECT_THROW(scanDirsInDirectory(root.path().string(), reader), std::runtime_error);
  EXPECT_EQ(open_before, support::NamesIn("/proc/self/fd"));
}

TEST(Scan, an_empty_reader_raises_on_the_first_entry_it_should_report) {
  const TempDir root;
  fs::create_directories(root / "sub");
  EXPECT_NO_THROW(scanFilesInDirExcludeSymlink(root.path().string(), FileReader(), 10));
  WriteFile(root / "sub/f");
  EXPECT_NO_THROW(scanFilesInDirExcludeSymlink(root.path().string(), FileReader(), 1));
  EXPECT_THROW(scanFilesInDirExcludeSymlink(root.path().string(), FileReader(), 10), std::bad_function_call);
}

TEST(Scan, one_directory_per_level_is_open_while_its_subdirectories_are_walked) {
  const TempDir root;
  for (const char* file : {"f", "d/f", "d/d/f"}) WriteFile(root / file);
  const std::size_t before = support::OpenDescriptors();
  std::vector<std::size_t> open;
  scanFilesInDirExcludeSymlink(
      root.path().string(),
      [&](const std::string&, const std::string&) { open.push_back(support::OpenDescriptors() - before); }, 10);
  EXPECT_EQ((std::vector<std::size_t>{1, 2, 3}), open);
  EXPECT_EQ(before, support::OpenDescriptors());
}

// The walker over the subdirectories of one directory.

Steps ScanDirsFrame() {
  return Traced("platform_utils", "void scanDirsInDirectory(const std::string&, FileReader)", Steps{});
}

FRESH_TEST(ScanDirs, the_immediate_subdirectories_are_reported) {
  const TempDir root;
  for (const char* file : {"f", "sub/f", "sub/deep/f", ".hidden/f", ".sac_symlink/f"}) WriteFile(root / file);
  fs::create_symlink("sub", root / "link");
  Seen seen;
  scanDirsInDirectory(root.path().string(), Into(seen));
  EXPECT_EQ((Seen{{root / ".hidden", ".hidden"}, {root / ".sac_symlink", ".sac_symlink"}, {root / "sub", "sub"}}),
            Sorted(seen));
  EXPECT_TRUE(Holds(platform, {ScanDirsFrame()}));
}

FRESH_TEST(ScanDirs, a_directory_that_cannot_be_opened_has_none) {
  Seen seen;
  scanDirsInDirectory("/proc/nowhere/at/all", Into(seen));
  EXPECT_TRUE(seen.empty());
  EXPECT_TRUE(Holds(platform, {ScanDirsFrame()}));
}

FRESH_TEST(ScanDirs, without_entry_types_nothing_is_reported) {
  const TempDir root;
  fs::create_directories(root / "sub");
  interposed::Now().entry_types_unknown = true;
  Seen seen;
  scanDirsInDirectory(root.path().string(), Into(seen));
  EXPECT_TRUE(seen.empty());
}

FRESH_TEST(ScanDirs, an_empty_reader_raises_after_the_exit_line) {
  const TempDir root;
  fs::create_directories(root / "sub");
  EXPECT_THROW(scanDirsInDirectory(root.path().string(), FileReader()), std::bad_function_call);
  EXPECT_TRUE(Holds(platform, {ScanDirsFrame()}));
}

}  // namespace
}  // namespace unit
