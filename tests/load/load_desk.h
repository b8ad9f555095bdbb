// Eight orvelbox processes at a time on one device, with random commands, and random trouble meanwhile. A run consists
// of rounds. At its end every process that is still running is killed, if there are kills, and other trouble ends. Then
// one command repairs the device, and the device must be sound.
// Environment: ORVEL_LOAD_SECONDS, the duration (default 120); ORVEL_LOAD_SEED, the seed of all rounds (default: a
// different one for each round, which is printed). The seed determines commands and trouble, but not which process is
// faster, so a failing one may have to run for several rounds.
#ifndef TESTS_LOAD_LOAD_DESK_H_
#define TESTS_LOAD_LOAD_DESK_H_

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/load/soundness.h"
#include "tests/support/orvelbox_desk.h"

namespace load {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using Random = std::mt19937;

// A number in [0, limit), the same with every standard library.
inline std::size_t Below(std::size_t limit, Random& random) { return random() % limit; }

// A value of a map.
template <typename Map>
const typename Map::mapped_type& Drawn(const Map& map, Random& random) {
  return std::next(map.begin(), static_cast<std::ptrdiff_t>(Below(map.size(), random)))->second;
}

struct Trouble {
  bool kills = false;                  // commands and their hooks
  std::function<void(Random&)> begin;  // called at random moments, in turns with `end`
  std::function<void()> end = [] {};
  Strictness strictness = Strictness::kComplete;
};

struct Counts {
  int commands = 0;
  int changes = 0;  // that succeeded
  int refused = 0;  // because the device was in use
  int failed = 0;   // for another reason
  int killed = 0;
  int mended = 0;  // packages repaired
  int troubles = 0;
};

class LoadDesk : public e2e::HookDesk {
 protected:
  void SetUp() override;
  // Creates the packages.
  void MakeKnownFiles() { known_ = MakeKnownPackages(dir_.path() / "known"); }
  // Replaces the device by a new one; calls `prepare` while its directory is empty.
  void OnNewDevice(const std::function<void()>& prepare);
  // Runs all rounds and prints the counts. A run without changes or trouble fails, because it proves nothing.
  void RunRounds(const Trouble& trouble);

  KnownPackages known_;

 private:
  struct Command {
    std::vector<std::string> arguments;
    bool changes = false;
    std::vector<int> statuses;  // that it may end with when nothing is wrong
  };
  struct Slot {
    Random random;
    pid_t process = 0;  // 0: none
    Clock::time_point next_start;
    Command command;
    std::optional<Clock::time_point> kill_at;
    bool killed = false;
  };

  Command DrawCommand(Random& random) const;
  void StartNext(Slot& slot, Clock::time_point end, const Trouble& trouble) const;
  void Kill(Slot& slot);
  void Advance(Slot& slot, const Trouble& trouble);
  void Judge(const Slot& slot, const e2e::Result& result, const Trouble& trouble);
  void AbandonHanging(Slot& slot) const;
  void RunRound(unsigned seed, Clock::time_point end, const Trouble& trouble);
  void Mend();
  // Installs every package's version again, without trouble; then the plug-in's effects must be complete too.
  void Renew();

  Counts counts_;
};

}  // namespace load

#endif
