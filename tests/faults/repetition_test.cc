// Calls the hooks ten thousand times: neither memory nor descriptors grow.
#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/faults/fault_desk.h"
#include "tests/faults/small_platform.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"

#if defined(__SANITIZE_ADDRESS__)
// GCC provides the function without a header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace {

constexpr int kRounds = 10000;
constexpr int kWarmUp = 100;
constexpr const char* kSecondId = "org.second";

std::size_t AllocatedBytes() {
#if defined(__SANITIZE_ADDRESS__)
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

// One round: the lifecycle of a package. The install of another package between two rounds makes the pass run every
// time.
void RunLifecycle(const LoadedPlugin& plugin, xmlDoc* coba, xmlDoc* ordinary) {
  EXPECT_EQ(0, plugin.Event("INSTALL", ordinary, fault_desk::kId));
  EXPECT_EQ(0, plugin.Event("CLEAN", coba, fault_desk::kId));
  EXPECT_EQ(0, plugin.Event("UPGRADE", ordinary, kSecondId));
  EXPECT_EQ(0, plugin.Event("CLEAN", ordinary, kSecondId));
  EXPECT_EQ(0, plugin.Event("REMOVED", ordinary, kSecondId));
  EXPECT_EQ(0, plugin.Event("CLEANUP", ordinary, kSecondId));
  EXPECT_EQ(0, plugin.Event("RECOVERUNINSTALL", nullptr, fault_desk::kId));
  EXPECT_EQ(0, plugin.Event("UNDO", ordinary, fault_desk::kId));
  EXPECT_EQ(0, plugin.Event("UNINSTALL", ordinary, kSecondId));
}

void RunLifecycles(int rounds, const LoadedPlugin& plugin, xmlDoc* coba, xmlDoc* ordinary) {
  support::StandardErrorOf([&] {
    for (int round = 0; round < rounds; ++round) {
      if (round % kWarmUp == 0) fault_desk::LayOutDuplicate();
      RunLifecycle(plugin, coba, ordinary);
      if (round % kWarmUp == 0 && ftruncate(STDERR_FILENO, 0) != 0)
        ADD_FAILURE() << "what was printed cannot be dropped";
    }
  });
}

TEST(Repetition, ten_thousand_lives_of_a_package_take_no_more_memory_or_descriptors_than_a_few) {
  fault_desk::OnDevice([] {
    small_platform::Now().packages[1] = {kSecondId, "/opt/usr/apps/org.second", false, nullptr};
    fault_desk::LayOutCaches(fault_desk::Removing().before);
    const support::Document coba = fault_desk::ManifestFor({"", true});
    const support::Document ordinary = fault_desk::ManifestFor({""});
    const LoadedPlugin plugin;
    RunLifecycles(kWarmUp, plugin, coba.get(), ordinary.get());
    const std::size_t descriptors = support::OpenDescriptors();
    const std::size_t bytes = AllocatedBytes();
    if (bytes == 0) GTEST_SKIP() << "this allocator does not tell how much it gave out";
    RunLifecycles(kRounds, plugin, coba.get(), ordinary.get());
    // A leak of one byte per round would exceed this.
    EXPECT_LT(AllocatedBytes(), bytes + kRounds);
    EXPECT_EQ(descriptors, support::OpenDescriptors());
    EXPECT_GT(small_platform::Now().restarts, kRounds);
  });
}

}  // namespace
