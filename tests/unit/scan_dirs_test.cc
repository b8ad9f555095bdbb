// The walker over the subdirectories of one directory.
#include <algorithm>

#include "morvath/platform_utils.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

using Seen = std::vector<std::pair<std::string, std::string>>;

FileReader Into(Seen& seen) {
  return [&seen](const std::string& path, const std::string& name) { seen.emplace_back(path, name); };
}

Seen Sorted(Seen seen) {
  std::sort(seen.begin(), seen.end());
  return seen;
}

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
