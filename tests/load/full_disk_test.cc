// The disk of a device in use is full at random moments. The disk is a small tmpfs in a separate namespace.
#include <fcntl.h>
#include <sys/mount.h>

#include "base/unique_fd.h"
#include "tests/host/machine.h"
#include "tests/load/load_desk.h"

namespace load {
namespace {

constexpr const char* kDiskSize = "size=8m";
constexpr std::uintmax_t kBlock = 4096;
constexpr unsigned kMostBlocksLeft = 40;  // somewhat more than one package needs

class FullDiskUnderLoad : public LoadDesk {
 protected:
  void SetUp() override {
    LoadDesk::SetUp();
    const std::string obstacle = machine::ObstacleToEmptied(ORVELBOX_PROGRAM);
    if (!obstacle.empty()) GTEST_SKIP() << "no namespace for another machine: " << obstacle;
  }
  std::string Filler() const { return device_.directory / "root/filler"; }
  // Leaves a few blocks at the most.
  void FillUp(Random& random) const {
    const UniqueFd filler(open(Filler().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    const std::uintmax_t left = Below(kMostBlocksLeft, random) * kBlock;
    // Other processes take blocks too, so fewer may be available when the filler is made.
    for (;;) {
      const std::uintmax_t available = e2e::fs::space(device_.directory).available;
      if (available <= left) return;
      if (posix_fallocate(filler.get(), 0, static_cast<off_t>(available - left)) == 0) return;
    }
  }
};

TEST_F(FullDiskUnderLoad, leaves_a_sound_device) {
  MakeKnownFiles();
  support::InFreshProcess([&] {
    machine::EnterEmptied();
    OnNewDevice([&] { ASSERT_EQ(0, mount("disk", device_.directory.c_str(), "tmpfs", 0, kDiskSize)); });
    Trouble trouble;
    trouble.begin = [&](Random& random) { FillUp(random); };
    trouble.end = [&] { e2e::fs::remove(Filler()); };
    trouble.strictness = Strictness::kPluginHindered;
    RunRounds(trouble);
  });
}

}  // namespace
}  // namespace load
