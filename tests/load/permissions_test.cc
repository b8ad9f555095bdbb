// An ordinary user's device is used while permissions of random files and directories are missing for a moment.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/unique_fd.h"
#include "platform/host/fixed_paths.h"
#include "tests/host/machine.h"
#include "tests/load/load_desk.h"

namespace load {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kModes[] = {0, 0300, 0400, 0500};

// A file or directory without some of its permissions. It is held open, because it may be moved meanwhile.
class ClosedPlace {
 public:
  ClosedPlace(const fs::path& path, mode_t mode) : place_(open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC)) {
    struct stat status {};
    if (!place_ || fstat(place_.get(), &status) != 0 || S_ISLNK(status.st_mode)) return;
    mode_ = status.st_mode & 07777;
    chmod(Name().c_str(), mode);
  }
  ClosedPlace(const ClosedPlace&) = delete;
  ClosedPlace& operator=(const ClosedPlace&) = delete;
  ~ClosedPlace() {
    if (mode_) chmod(Name().c_str(), *mode_);
  }

 private:
  std::string Name() const { return "/proc/self/fd/" + std::to_string(place_.get()); }

  UniqueFd place_;
  std::optional<mode_t> mode_;
};

// A random path in `directory` or that itself. Others change the directory meanwhile, so the path may be gone.
fs::path DrawPath(const fs::path& directory, Random& random) {
  if (Below(4, random) == 0) return directory;
  std::vector<std::string> names;
  try {
    if (fs::is_directory(directory)) names = support::NamesIn(directory);
  } catch (const std::exception&) {
    return directory;
  }
  return names.empty() ? directory : DrawPath(directory / names[Below(names.size(), random)], random);
}

// Why an ordinary user cannot run orvelbox with hooks here; nothing when it is possible.
std::string OrdinaryUsersObstacle(const std::string& answer) {
  support::WriteFile(answer);
  fs::permissions(answer, fs::perms::all);
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    std::string reason;
    host::AvailableFixedPathsMethod(&reason);
    if (access(ORVELBOX_PROGRAM, X_OK) != 0) reason = ORVELBOX_PROGRAM " is closed to ordinary users";
    support::WriteFile(answer, reason);
  });
  return support::ReadFile(answer);
}

class PermissionsUnderLoad : public LoadDesk {
 protected:
  void SetUp() override {
    LoadDesk::SetUp();
    const std::string obstacle = OrdinaryUsersObstacle(dir_ / "obstacle");
    if (!obstacle.empty()) GTEST_SKIP() << obstacle;
  }
};

TEST_F(PermissionsUnderLoad, missing_for_a_moment_leave_a_sound_device) {
  MakeKnownFiles();
  fs::remove_all(device_.directory);
  fs::permissions(dir_.path(), fs::perms::all);
  support::InFreshProcess([&] {
    machine::BecomeOrdinaryUser();
    OnNewDevice([] {});
    std::optional<ClosedPlace> closed;
    Trouble trouble;
    trouble.begin = [&](Random& random) {
      const fs::path path = DrawPath(device_.directory, random);
      closed.emplace(path, kModes[Below(std::size(kModes), random)]);
    };
    trouble.end = [&] { closed.reset(); };
    trouble.strictness = Strictness::kPluginHindered;
    RunRounds(trouble);
  });
}

}  // namespace
}  // namespace load
