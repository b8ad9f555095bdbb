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
  RunRounds(trouble);
}

}  // namespace
}  // namespace load
