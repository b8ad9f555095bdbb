// orvelbox and its hooks are killed at every call that changes files, including those of the package database. The next
// command finds the operation not begun or finished, or undoes it.
#include <csignal>

#include "tests/faults/killable.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

using State = std::map<std::string, std::string>;

// At least this many calls are expected; fewer would mean that calls are not counted.
constexpr int kFewestCalls = 60;
constexpr int kFewestCallsOfMending = 15;

class KilledOrvelbox : public HookDesk, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    HookDesk::SetUp();
    AddPlatformFile("netcoreapp/Dup.dll");
    Succeed({"install", Component("org.other", "1")});
  }

  static std::vector<std::string> WithPlugin(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--plugin", MORVATH_LIBRARY});
    return arguments;
  }

  // A package that shares an assembly and contains a DLL that the platform has.
  std::string Component(const std::string& id, const std::string& version) const {
    return MakePackage(id + version, ManifestText(id, version, CobaMetadata()),
                       {{"shared/res/" + id + version + ".dll", "shared"}, {"bin/Dup.dll", "twice"}});
  }

  Result Succeed(const std::vector<std::string>& arguments) const { return RunExpecting(0, WithPlugin(arguments)); }

  // Runs orvelbox until it is killed at the call of that number. Returns false when it ended before.
  bool KilledAt(int call, const std::vector<std::string>& arguments) {
    environment_ = {{killable::kAt, std::to_string(call)}, {killable::kDirectory, device_.directory.string()}};
    if (GetParam()) environment_[killable::kHalfWritten] = "yes";
    const Result result = Run(WithPlugin(arguments));
    environment_.clear();
    EXPECT_THAT(result.status, AnyOf(0, 128 + SIGKILL)) << result.err;
    return result.status == 128 + SIGKILL;
  }

  // Runs a command that repairs the device and changes nothing else. The killed hooks may still be ending.
  Result RunNextCommand() const {
    const std::vector<std::string> command = WithPlugin({"undo", "org.other"});
    Result next = Run(command);
    while (next.err.find("in use by another orvelbox") != std::string::npos) next = Run(command);
    EXPECT_EQ(0, next.status) << next.out << next.err;
    return next;
  }

  // The device's state without the temporary cache files, which a killed plug-in leaves and its next run overwrites.
  State Found() const {
    State state = DeviceState();
    for (const char* name : {"temp_TPA.txt", "temp_CoBA.txt"}) {
      state.erase((device_.OnDesk(kCacheDirectory) / name).lexically_relative(device_.directory).string());
    }
    return state;
  }

  // Copies of the device.
  fs::path Save(const std::string& name) const {
    const fs::path saved = dir_.path() / name;
    fs::copy(device_.directory, saved, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    return saved;
  }
  void PutBack(const fs::path& saved) const {
    fs::remove_all(device_.directory);
    fs::copy(saved, device_.directory, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  }

  // Kills the operation at every call. The device is restored each time.
  void ExpectWholeOperation(const std::vector<std::string>& operation) {
    const fs::path saved = dir_.path() / "saved";
    fs::copy(device_.directory, saved, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    const State before = Found();
    Succeed(operation);
    const State after = Found();
    ASSERT_NE(before, after);
    int call = 1;
    for (PutBack(saved); KilledAt(call, operation) && !HasFailure(); PutBack(saved)) {
      SCOPED_TRACE("killed at call " + std::to_string(call++));
      const Result next = RunNextCommand();
      const State found = Found();
      EXPECT_THAT(found, AnyOf(Eq(before), Eq(after))) << next.out;
      if (found == before) Succeed(operation);
      EXPECT_EQ(after, Found());
    }
    EXPECT_GE(call, kFewestCalls);
  }
};

TEST_P(KilledOrvelbox, an_install_is_whole_or_not_at_all) {
  ExpectWholeOperation({"install", Component("org.pkg", "1")});
}

TEST_P(KilledOrvelbox, an_upgrade_is_whole_or_not_at_all) {
  Succeed({"install", Component("org.pkg", "1")});
  ExpectWholeOperation({"upgrade", Component("org.pkg", "2")});
}

TEST_P(KilledOrvelbox, an_uninstall_is_whole_or_not_at_all) {
  Succeed({"install", Component("org.pkg", "1")});
  ExpectWholeOperation({"uninstall", "org.pkg"});
}

// When a repair is killed, the next run completes it.
TEST_P(KilledOrvelbox, mending_may_be_killed_too) {
  const State before = DeviceState();
  const std::vector<std::string> install = {"install", Component("org.pkg", "1")};
  const fs::path whole = Save("whole");
  int last_undecided = 0;
  for (int call = 1; KilledAt(call, install); ++call, PutBack(whole)) {
    if (support::IsThere(device_.directory / "pending/begun")) last_undecided = call;
  }
  PutBack(whole);
  ASSERT_TRUE(KilledAt(last_undecided, install));
  const fs::path broken = Save("broken");
  int call = 1;
  for (; KilledAt(call, {"undo", "org.other"}) && !HasFailure(); PutBack(broken)) {
    SCOPED_TRACE("mending killed at call " + std::to_string(call++));
    RunNextCommand();
    EXPECT_EQ(before, Found());
  }
  EXPECT_EQ(before, Found());
  EXPECT_GE(call, kFewestCallsOfMending);
}

INSTANTIATE_TEST_SUITE_P(Ends, KilledOrvelbox, testing::Bool(),
                         [](const auto& end) { return end.param ? "amid_a_write" : "before_a_call"; });

}  // namespace
}  // namespace e2e
