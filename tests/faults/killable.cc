// Makes a program killable at one of its calls: reads the plan from the environment before main().
#include "tests/faults/killable.h"

#include <cstdlib>

#include "tests/faults/fault_points.h"

namespace {

__attribute__((constructor)) void PlanWhatTheEnvironmentAsks() {
  const char* at = std::getenv(killable::kAt);
  const char* directory = std::getenv(killable::kDirectory);
  if (at == nullptr || directory == nullptr) return;
  faults::Watch(directory, directory);
  const bool half = std::getenv(killable::kHalfWritten) != nullptr;
  faults::PutUnder({faults::kChanges, half ? faults::Fate::kEndHalfWritten : faults::Fate::kEnd, std::atoi(at)});
}

}  // namespace
