// Files with a number that does not fit 32 bits: the size, the inode number or the modification time. On a 32-bit
// processor the C library's narrow functions fail on such a file with EOVERFLOW.
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <optional>
#include <set>

#include "morvath/assembly_files.h"
#include "morvath/platform_utils.h"
#include "platform/host/child_process.h"
#include "platform/host/device.h"
#include "platform/host/fixed_paths_methods.h"
#include "plugin/catalogues.h"
#include "plugin/duplicates.h"
#include "quarnel_util/quarnel_util.h"
#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"
#include "tests/unit/interposed_files.h"

namespace unit {
namespace {

constexpr std::uintmax_t kSize = 5'000'000'000;
constexpr std::time_t kYear2040 = 2'208'988'800;

// An overlay with xino numbers the files of its lower layers with the layer's index in the topmost bits.
void MountOverlay(const fs::path& root) {
  const std::string options = "lowerdir=" + (root / "lower").string() + ",upperdir=" + (root / "upper/files").string() +
                              ",workdir=" + (root / "upper/work").string() + ",xino=on,userxattr";
  const auto mount_at = [](const fs::path& target, const char* type, const char* data) {
    fs::create_directories(target);
    if (mount(type, target.c_str(), type, 0, data) != 0) {
      throw host::DeviceError(std::string("no ") + type + " can be mounted here: " + std::strerror(errno));
    }
  };
  if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) throw host::DeviceError("mounts stay shared");
  mount_at(root / "upper", "tmpfs", nullptr);
  fs::create_directories(root / "upper/files");
  fs::create_directories(root / "upper/work");
  mount_at(root / "merged", "overlay", options.c_str());
}

void EnterNamespaceWithOverlay(const fs::path& root) {
  host::EnterMountNamespace(geteuid() != 0);
  MountOverlay(root);
}

bool HasLargeNumber(const fs::path& file) {
  struct statx status {};
  if (statx(AT_FDCWD, file.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &status) != 0) return false;
  return status.stx_size > UINT32_MAX || status.stx_ino > UINT32_MAX || status.stx_mtime.tv_sec > INT32_MAX;
}

// Why this machine cannot create such inode numbers; nothing if it can.
std::optional<std::string> ObstacleToOverlay() {
  const TempDir root;
  WriteFile(root / "lower/file");
  const auto set_up = [&] {
    EnterNamespaceWithOverlay(root.path());
    if (!HasLargeNumber(root / "merged/file")) throw host::DeviceError("an overlay here has small inode numbers");
  };
  try {
    host::RunChild(host::HeldSignals(), set_up, [] { return 0; });
    return std::nullopt;
  } catch (const host::DeviceError& error) {
    return error.what();
  }
}

// A kind of number, and how a file gets one that is too large for 32 bits.
struct Kind {
  std::string name;
  void (*give)(const std::string& file);
  std::uintmax_t size;
  bool overlay;
};
void PrintTo(const Kind& kind, std::ostream* stream) { *stream << kind.name; }

void GiveSize(const std::string& file) { fs::resize_file(file, kSize); }
void GiveDate(const std::string& file) {
  const timespec times[] = {{kYear2040, 0}, {kYear2040, 0}};
  EXPECT_EQ(0, utimensat(AT_FDCWD, file.c_str(), times, 0)) << file;
}
void GiveNothing(const std::string&) {}

const Kind kKinds[] = {{"size", GiveSize, kSize, false}, {"date", GiveDate, 1, false}, {"inode", GiveNothing, 1, true}};

class LargeNumbers : public testing::TestWithParam<Kind> {
 protected:
  void SetUp() override {
    if (!GetParam().overlay) return;
    if (const auto obstacle = ObstacleToOverlay()) GTEST_SKIP() << *obstacle;
  }

  // Runs the body in a new process with a directory in which the files `names` have such a number.
  void With(const std::vector<std::string>& names, const std::function<void(const fs::path&, Platform&)>& body) const {
    const TempDir root;
    const fs::path lower = root / "lower";
    for (const std::string& name : names) {
      WriteFile(lower / name, "x");
      GetParam().give(lower / name);
    }
    Fresh([&](Platform& platform) {
      if (GetParam().overlay) EnterNamespaceWithOverlay(root.path());
      const fs::path directory = GetParam().overlay ? root / "merged" : lower.string();
      for (const std::string& name : names) EXPECT_TRUE(HasLargeNumber(directory / name)) << directory / name;
      body(directory, platform);
    });
  }
};

TEST_P(LargeNumbers, a_file_is_real) {
  With({"A.dll"}, [](const fs::path& directory, Platform& platform) {
    EXPECT_TRUE(isRealPath(directory / "A.dll"));
    EXPECT_TRUE(Holds(platform, {}));
  });
}

TEST_P(LargeNumbers, a_file_exists_and_has_its_size) {
  With({"A.dll"}, [](const fs::path& directory, Platform&) {
    // Uses Boost's library, which may be built with 32-bit times.
    EXPECT_TRUE(exist(directory.string() + "/A.dll") || GetParam().name == "date");
    EXPECT_EQ(GetParam().size, getFileSize(directory / "A.dll"));
  });
}

TEST_P(LargeNumbers, the_walks_report_files_and_links_to_them) {
  With({"A.dll", "sub/B.dll"}, [](const fs::path& directory, Platform&) {
    fs::create_symlink("A.dll", directory / "link");
    for (const bool types_unknown : {false, true}) {
      interposed::Now().entry_types_unknown = types_unknown;
      std::set<std::string> names;
      const auto note = [&](const std::string&, const std::string& name) { names.insert(name); };
      scanFilesInDirExcludeSymlink(directory, note, 2);
      EXPECT_EQ(1u, names.count("A.dll")) << types_unknown;
      EXPECT_EQ(1u, names.count("link")) << types_unknown;
      EXPECT_EQ(types_unknown ? 0u : 1u, names.count("B.dll"));
    }
    interposed::Now().entry_types_unknown = false;
    std::vector<std::string> directories;
    scanDirsInDirectory(directory, [&](const std::string&, const std::string& name) { directories.push_back(name); });
    EXPECT_EQ(std::vector<std::string>{"sub"}, directories);
  });
}

TEST_P(LargeNumbers, an_assembly_is_listed_for_the_cache_file) {
  With({"A.dll"}, [](const fs::path& directory, Platform&) {
    std::string list;
    addAssembliesFromDirectories({directory}, list);
    EXPECT_EQ(directory / "A.dll", list);
  });
}

TEST_P(LargeNumbers, a_duplicate_goes_and_leaves_its_information_file) {
  With({"A.dll", "A.dll_deleted"}, [](const fs::path& directory, Platform&) {
    coreFX = {{"A.dll", "/usr/share/dotnet.orvel/netcoreapp/A.dll"}};
    const std::string path = directory / "A.dll";
    EXPECT_EQ(0, isUniqueDll(path, "A.dll"));
    EXPECT_FALSE(IsThere(path));
    EXPECT_EQ(
        path + " was deleted because /usr/share/dotnet.orvel/netcoreapp/A.dll exists\nRemove " + path + " from OPK\n",
        ReadFile(path + "_deleted"));
  });
}

TEST_P(LargeNumbers, a_durable_file_is_replaced_and_so_is_what_an_earlier_write_left) {
  With({"TPA.txt", "temp_TPA.txt"}, [](const fs::path& directory, Platform&) {
    writeStringToFile(directory.string() + "/", "TPA.txt", "abc");
    EXPECT_EQ("abc", ReadFile(directory / "TPA.txt"));
    EXPECT_FALSE(IsThere(directory / "temp_TPA.txt"));
  });
}

TEST_P(LargeNumbers, a_file_is_read_unless_its_size_is_beyond_the_limit) {
  With({"TPA.txt"}, [](const fs::path& directory, Platform&) {
    EXPECT_EQ(GetParam().size == kSize ? "" : "x", readFileToString(directory / "TPA.txt"));
  });
}

TEST_P(LargeNumbers, label_and_owner_are_copied) {
  With({"A.dll"}, [](const fs::path& directory, Platform& platform) {
    platform.labels[directory / "A.dll"] = "User::App::Shared";
    updateAssemblyInfo(directory / "A.dll", directory / "target", false);
    EXPECT_EQ(1u, platform.Calls("smack_setlabel").size());
    EXPECT_EQ(1u, platform.Calls("chown(").size());
  });
}

INSTANTIATE_TEST_SUITE_P(Kinds, LargeNumbers, testing::ValuesIn(kKinds),
                         [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace unit
