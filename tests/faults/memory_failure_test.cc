// Every allocation of an event fails once, one after the other. std::bad_alloc may leave the hook. All resources are
// released (fault_desk's Call expects that), no file is damaged, and the next run succeeds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/faults/fault_desk.h"
#include "tests/faults/fault_points.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Eq;
using testing::StartsWith;

constexpr faults::Plan kOutOfMemory = {faults::kMemory, faults::Fate::kFail};

// Calls the event while an allocation fails.
void CallShortOfMemory(const fault_desk::Event& event) {
  ASSERT_TRUE(faults::MakeXmlAllocationsFail());
  const auto result = fault_desk::Call(event);
  EXPECT_THAT(result, AnyOf(Eq(std::nullopt), Eq(0)));
}

void ExpectAllocationsOfBothKinds(const std::vector<std::string>& calls) {
  if (testing::Test::HasFailure()) return;
  EXPECT_THAT(calls, Contains("operator new"));
  EXPECT_THAT(calls, Contains(StartsWith("xmlM")));
}

void ExpectIntactCachesWithoutMemory(const fault_desk::CacheChange& change) {
  fault_desk::OnDevice([&] {
    const auto calls = faults::MeetEveryCall(
        kOutOfMemory, [&] { fault_desk::LayOutCaches(change.before); }, [&] { CallShortOfMemory(change.event); },
        [&](const faults::Outcome&) { fault_desk::ExpectIntactCaches(change); });
    ExpectAllocationsOfBothKinds(calls);
  });
}

TEST(MemoryFailure, during_an_add_breaks_no_cache_file) { ExpectIntactCachesWithoutMemory(fault_desk::Adding()); }

TEST(MemoryFailure, during_a_removal_breaks_no_cache_file) { ExpectIntactCachesWithoutMemory(fault_desk::Removing()); }

TEST(MemoryFailure, during_an_install_loses_no_dll_unsaid) {
  fault_desk::OnDevice([] {
    const auto calls = faults::MeetEveryCall(
        kOutOfMemory, fault_desk::LayOutDuplicate, [] { CallShortOfMemory({"INSTALL"}); },
        [](const faults::Outcome&) { fault_desk::ExpectConsistentDuplicate(); });
    ExpectAllocationsOfBothKinds(calls);
  });
}

}  // namespace
