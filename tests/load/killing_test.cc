// Processes that change and read one device are killed at random moments.
#include "tests/load/load_desk.h"

namespace load {
namespace {

class KillingUnderLoad : public LoadDesk {};

TEST_F(KillingUnderLoad, leaves_a_sound_device) {
  MakeKnownFiles();
  OnNewDevice([] {});
  Trouble trouble;
  trouble.kills = true;
  const Counts counts = RunRounds(trouble);
  EXPECT_GT(counts.changes, 0);
  EXPECT_GT(counts.refused, 0);
  EXPECT_GT(counts.killed, 0);
  EXPECT_GT(counts.mended, 0);
}

}  // namespace
}  // namespace load
