// Runs orvelbox processes under load.
#include "tests/load/load_desk.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <thread>

#include "platform/host/fixed_paths.h"

namespace load {
namespace {

constexpr unsigned kProcesses = 8;
constexpr unsigned kDefaultSeconds = 120;
constexpr std::chrono::seconds kRound(3);
constexpr std::chrono::seconds kPatience(60);  // for the end of a command
constexpr std::size_t kLongestLife = 400;      // milliseconds until a process is killed
constexpr std::size_t kLongestRest = 200;      // milliseconds after a command that was refused
constexpr std::size_t kLongestTrouble = 150;   // milliseconds until trouble begins or ends

std::optional<unsigned> NumberFromEnvironment(const char* name) {
  const char* text = std::getenv(name);
  if (text == nullptr) return std::nullopt;
  return static_cast<unsigned>(std::stoul(text));
}

Random RandomOf(unsigned seed, unsigned part) {
  std::seed_seq sequence{seed, part};
  return Random(sequence);
}

milliseconds Delay(std::size_t longest, Random& random) { return milliseconds(Below(longest, random)); }

std::vector<pid_t> ChildrenOf(pid_t process) {
  const std::string number = std::to_string(process);
  std::ifstream list("/proc/" + number + "/task/" + number + "/children");
  std::vector<pid_t> children;
  for (pid_t child = 0; list >> child;) children.push_back(child);
  return children;
}

bool HasEnded(pid_t process) {
  siginfo_t info{};
  return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == process;
}

bool InUse(const e2e::Result& result) { return result.err.find("in use by another orvelbox") != std::string::npos; }

int Occurrences(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// Begins and ends the trouble in turns, at random moments.
class Troublemaker {
 public:
  Troublemaker(const Trouble& trouble, Random random) : trouble_(trouble), random_(random) {}

  // Returns true when trouble began.
  bool Advance() {
    if (!trouble_.begin || Clock::now() < next_) return false;
    next_ = Clock::now() + Delay(kLongestTrouble, random_);
    began_ = !began_;
    began_ ? trouble_.begin(random_) : trouble_.end();
    return began_;
  }

 private:
  const Trouble& trouble_;
  Random random_;
  Clock::time_point next_;
  bool began_ = false;
};

}  // namespace

void LoadDesk::SetUp() {
  HookDesk::SetUp();
  std::string reason;
  // In place, a killed command leaves links on the machine.
  if (host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kInPlace) GTEST_SKIP() << reason;
}

void LoadDesk::OnNewDevice(const std::function<void()>& prepare) {
  e2e::fs::remove_all(device_.directory);
  e2e::fs::create_directory(device_.directory);
  prepare();
  host::CreateDevice(device_.directory);
  AddPlatformFile(kPlatformDll);
}

LoadDesk::Command LoadDesk::DrawCommand(Random& random) const {
  const KnownVersion& package = Drawn(Drawn(known_, random), random);
  const std::string& source = Below(2, random) == 0 ? package.directory : package.archive;
  const std::vector<std::pair<std::size_t, Command>> choices = {
      {5, {{"install", source}, true, {0, 1}}},
      {5, {{"upgrade", source}, true, {0, 1}}},
      {3, {{"uninstall", package.id}, true, {0, 1}}},
      {1, {{"check", source}, false, {1}}},
      {1, {{"list"}, false, {0}}},
      {1, {{"show", package.id}, false, {0, 1}}},
      {1, {{"log", "--priority", "E"}, false, {0}}},
      {1, {{"why", package.id}, false, {0, 1}}},
      {1, {{"cache"}, false, {0}}},
      {1, {{"cache", "verify"}, false, {0, 1}}},
  };
  std::size_t sum = 0;
  for (const auto& [weight, command] : choices) sum += weight;
  std::size_t drawn = Below(sum, random);
  auto choice = choices.begin();
  for (; drawn >= choice->first; ++choice) drawn -= choice->first;
  return choice->second;
}

void LoadDesk::StartNext(Slot& slot, Clock::time_point end, const Trouble& trouble) const {
  slot.command = DrawCommand(slot.random);
  slot.killed = false;
  slot.kill_at = end;
  const milliseconds delay = Delay(kLongestLife, slot.random);
  if (Below(2, slot.random) == 0) slot.kill_at = std::min(end, Clock::now() + delay);
  if (!trouble.kills) slot.kill_at.reset();
  slot.process = Start(slot.command.arguments, [] { setpgid(0, 0); });
}

// Kills the command, its hooks, or both.
void LoadDesk::Kill(Slot& slot) {
  slot.kill_at.reset();
  slot.killed = true;
  ++counts_.killed;
  switch (Below(3, slot.random)) {
    case 0:
      kill(slot.process, SIGKILL);
      break;
    case 1:
      for (const pid_t child : ChildrenOf(slot.process)) kill(child, SIGKILL);
      break;
    default:
      kill(-slot.process, SIGKILL);
  }
}

void LoadDesk::Judge(const Slot& slot, const e2e::Result& result, const Trouble& trouble) {
  ++counts_.commands;
  counts_.mended += Occurrences(result.out, "mended ");
  if (slot.killed && result.status == 128 + SIGKILL) return;
  const bool as_usual = std::count(slot.command.statuses.begin(), slot.command.statuses.end(), result.status) > 0;
  const bool failed_cleanly = result.status != 0 && result.status <= 2 && result.err.rfind("orvelbox: ", 0) == 0;
  const bool hindered = slot.killed || trouble.strictness == Strictness::kPluginHindered;
  EXPECT_TRUE(as_usual || (hindered && failed_cleanly))
      << testing::PrintToString(slot.command.arguments) << " ended with " << result.status << ":\n"
      << result.out << result.err;
  if (!slot.command.changes) return;
  if (result.status == 0) ++counts_.changes;
  if (result.status != 0) ++(InUse(result) ? counts_.refused : counts_.failed);
}

void LoadDesk::Advance(Slot& slot, const Trouble& trouble) {
  if (slot.kill_at && Clock::now() >= *slot.kill_at) Kill(slot);
  if (!HasEnded(slot.process)) return;
  const std::string number = std::to_string(slot.process);
  const std::string outputs[] = {dir_ / ("out-" + number), dir_ / ("err-" + number)};
  // A process that was killed at once has not created them.
  for (const std::string& output : outputs) std::ofstream(output, std::ios::app);
  const e2e::Result result = WaitFor(slot.process);
  for (const std::string& output : outputs) e2e::fs::remove(output);
  slot.process = 0;
  // Refused commands would take most of the processor from the one that changes the device.
  if (InUse(result)) slot.next_start = Clock::now() + Delay(kLongestRest, slot.random);
  Judge(slot, result, trouble);
}

void LoadDesk::AbandonHanging(Slot& slot) const {
  ADD_FAILURE() << "does not end: " << testing::PrintToString(slot.command.arguments);
  kill(-slot.process, SIGKILL);
  WaitFor(slot.process);
  slot.process = 0;
}

// A command that changes nothing repairs the device. The hooks of a killed one may still be running.
void LoadDesk::Mend() {
  const Clock::time_point deadline = Clock::now() + kPatience;
  e2e::Result result = Run({"uninstall", "org.none"});
  while (InUse(result) && Clock::now() < deadline) result = Run({"uninstall", "org.none"});
  counts_.mended += Occurrences(result.out, "mended ");
  EXPECT_EQ(result.err, "orvelbox: org.none: not installed; see what is with: orvelbox list\n") << result.out;
}

void LoadDesk::Renew() {
  for (const char* name : kCacheFiles) support::WriteFile(device_.OnDesk(kCacheDirectory) / name, kEmptyCache);
  for (const auto& [id, version] : InstalledVersions(device_)) {
    RunExpecting(0, {"upgrade", known_.at(id).at(version).directory});
  }
}

void LoadDesk::RunRound(unsigned seed, Clock::time_point end, const Trouble& trouble) {
  e2e::fs::resize_file(device_.Log(), 0);
  std::vector<Slot> slots(kProcesses);
  for (unsigned i = 0; i < kProcesses; ++i) slots[i].random = RandomOf(seed, i);
  Troublemaker troublemaker(trouble, RandomOf(seed, kProcesses));
  for (bool running = true; running; std::this_thread::sleep_for(milliseconds(1))) {
    if (troublemaker.Advance()) ++counts_.troubles;
    running = Clock::now() < end;
    for (Slot& slot : slots) {
      if (slot.process == 0 && Clock::now() >= slot.next_start && Clock::now() < end) StartNext(slot, end, trouble);
      if (slot.process != 0) Advance(slot, trouble);
      if (slot.process != 0 && Clock::now() > end + kPatience) AbandonHanging(slot);
      running = running || slot.process != 0;
    }
  }
  trouble.end();
}

void LoadDesk::RunRounds(const Trouble& trouble) {
  const std::chrono::seconds duration(NumberFromEnvironment("ORVEL_LOAD_SECONDS").value_or(kDefaultSeconds));
  const std::optional<unsigned> given_seed = NumberFromEnvironment("ORVEL_LOAD_SEED");
  std::random_device new_seed;
  const Clock::time_point end = Clock::now() + duration;
  while (Clock::now() < end && !HasFailure()) {
    const unsigned seed = given_seed ? *given_seed : new_seed();
    std::cout << "a round with ORVEL_LOAD_SEED=" << seed << std::endl;
    SCOPED_TRACE("ORVEL_LOAD_SEED=" + std::to_string(seed));
    RunRound(seed, std::min(end, Clock::now() + kRound), trouble);
    Mend();
    EXPECT_THAT(FaultsOf(device_, known_, trouble.strictness), e2e::IsEmpty());
    if (trouble.strictness == Strictness::kPluginHindered) {
      Renew();
      EXPECT_THAT(FaultsOf(device_, known_, Strictness::kComplete), e2e::IsEmpty());
    }
    RunExpecting(0, {"cache", "verify"});
  }
  std::cout << counts_.commands << " commands, " << counts_.changes << " changes, " << counts_.refused
            << " refused as in use, " << counts_.failed << " failed, " << counts_.killed << " kills, " << counts_.mended
            << " repairs, " << counts_.troubles << " troubles" << std::endl;
  EXPECT_GT(counts_.changes, 0);
  EXPECT_TRUE(!trouble.kills || (counts_.refused > 0 && counts_.killed > 0 && counts_.mended > 0));
  EXPECT_TRUE(!trouble.begin || (counts_.failed > 0 && counts_.troubles > 0));
}

}  // namespace load
