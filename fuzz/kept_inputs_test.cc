// Runs the fuzz target of this program on every seed and every input that once showed an error.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "tests/support/child.h"
#include "tests/support/files.h"

extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

constexpr std::size_t kFewestSeeds = 3;

// Prepares the target if it needs that. When it cannot run on this machine, prints the reason and returns false.
bool IsPrepared() {
  if (LLVMFuzzerInitialize == nullptr) return true;
  int count = 0;
  char** none = nullptr;
  return LLVMFuzzerInitialize(&count, &none) == 0;
}

using Bytes = std::vector<std::uint8_t>;

// Runs the target on one input, in a new process.
void Give(const Bytes& bytes) {
  support::InFreshProcess([&] { EXPECT_EQ(0, LLVMFuzzerTestOneInput(bytes.data(), bytes.size())); });
}

TEST(KeptInputs, all_promises_hold) {
  if (!IsPrepared()) GTEST_SKIP() << "the target cannot run here, see above";
  const std::vector<std::string> names = support::NamesIn(SEED_DIRECTORY);
  ASSERT_LE(kFewestSeeds, names.size());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const std::string bytes = support::ReadFile(std::filesystem::path(SEED_DIRECTORY) / name);
    Give({bytes.begin(), bytes.end()});
  }
}

TEST(KeptInputs, no_input_and_mere_zeros_are_survived) {
  if (!IsPrepared()) GTEST_SKIP() << "the target cannot run here, see above";
  for (std::size_t size = 0; size < 10; ++size) Give(Bytes(size));
  Give(Bytes(1000));
}

}  // namespace
