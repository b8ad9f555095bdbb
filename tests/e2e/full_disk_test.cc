// A device on a full disk. The disk is a tiny tmpfs in a separate namespace.
#include <sys/mount.h>

#include <fstream>

#include "tests/host/machine.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class FullDiskE2e : public MachineDesk {
 protected:
  // Runs `body` in a process with a new device on a disk of `size`. Must be the last statement.
  void OnSmallDisk(const std::string& size, const std::function<void()>& body) {
    const std::string directory = device_.directory.string();
    std::filesystem::remove_all(directory);
    std::filesystem::create_directory(directory);
    support::InFreshProcess([&] {
      machine::EnterEmptied();
      ASSERT_EQ(0, mount("disk", directory.c_str(), "tmpfs", 0, ("size=" + size).c_str()));
      RunExpecting(0, {"init"});
      body();
    });
  }
};

TEST_F(FullDiskE2e, an_install_that_does_not_fit_leaves_nothing) {
  const std::string package =
      MakePackage("big", ManifestText("org.example.big", "1"), {{"bin/Big.dll", std::string(4 << 20, 'x')}});
  OnSmallDisk("2m", [&] {
    const auto before = DeviceState();
    const Result result = RunExpecting(1, {"install", package});
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("bin/Big.dll: cannot write: No space left on device; free some space"));
    EXPECT_EQ(DeviceState(), before);
  });
}

TEST_F(FullDiskE2e, an_upgrade_that_does_not_fit_keeps_the_version_before) {
  const std::string small = MakePackage("small", ManifestText("a", "1"), {{"bin/A.dll", "first"}});
  const std::string big = MakePackage("big", ManifestText("a", "2"), {{"bin/A.dll", std::string(4 << 20, 'x')}});
  OnSmallDisk("2m", [&] {
    RunExpecting(0, {"install", small});
    const auto before = DeviceState();
    const Result result = RunExpecting(1, {"upgrade", big});
    EXPECT_THAT(result.err, HasSubstr("No space left on device"));
    EXPECT_EQ(DeviceState(), before);
  });
}

// The files fit exactly; then there is no space for the record in the database.
TEST_F(FullDiskE2e, an_install_whose_record_does_not_fit_leaves_nothing) {
  const std::string package = MakePackage("a", ManifestText("a", "1"));
  OnSmallDisk("2m", [&] {
    const auto before = DeviceState();
    std::ofstream filler(device_.directory / "root/filler", std::ios::binary);
    const std::string block(4096, 'f');
    std::uintmax_t left = std::filesystem::space(device_.directory).available / block.size();
    for (; left > 2; --left) filler << block;
    filler.close();
    const Result result = RunExpecting(1, {"install", package});
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("orvelbox: "));
    std::filesystem::remove(device_.directory / "root/filler");
    EXPECT_EQ(RunExpecting(0, {"list"}).out, "");
    EXPECT_FALSE(support::IsThere(OnDesk("/opt/usr/globalapps/a")));
    RunExpecting(0, {"install", package});
  });
}

}  // namespace
}  // namespace e2e
