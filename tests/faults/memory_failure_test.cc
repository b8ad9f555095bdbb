// Every allocation of an event fails once, one after the other. The standard library's error may leave the hook;
// everything was given back (fault_desk's Call expects that), no file is broken, and the next run ends right.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/faults/fault_desk.h"
#include "tests/faults/fault_points.h"
#include "tests/faults/memory_calls.h"
#include "tests/support/files.h"
#include "tests/support/removal_texts.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Eq;
using testing::StartsWith;

using Text = std::optional<std::string>;

constexpr faults::Plan kOutOfMemory = {faults::kMemory, faults::Fate::kFail};

// Calls the event with an allocation failing.
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

void ExpectWholeOrAbsent(const Text& found, const Text& before, const Text& after) {
  EXPECT_THAT(found, AnyOf(Eq(before), Eq(std::nullopt), Eq(after)));
}

void ExpectSoundCachesThenRightOnes(const fault_desk::CacheChange& change) {
  const fault_desk::CacheTexts left = fault_desk::ReadCaches();
  ExpectWholeOrAbsent(left.tpa, change.before.tpa, change.after.tpa);
  ExpectWholeOrAbsent(left.coba, change.before.coba, change.after.coba);
  faults::Run({}, [&] { EXPECT_EQ(0, fault_desk::Call(change.event)); });
  const fault_desk::CacheTexts found = fault_desk::ReadCaches();
  EXPECT_EQ(left.tpa ? change.after.tpa : std::nullopt, found.tpa);
  EXPECT_EQ(left.coba ? change.after.coba : std::nullopt, found.coba);
}

void ExpectSoundCachesWithoutMemory(const fault_desk::CacheChange& change) {
  fault_desk::OnDevice([&] {
    const auto calls = faults::MeetEveryCall(
        kOutOfMemory, [&] { fault_desk::LayOutCaches(change.before); }, [&] { CallShortOfMemory(change.event); },
        [&](const faults::Outcome&) { ExpectSoundCachesThenRightOnes(change); });
    ExpectAllocationsOfBothKinds(calls);
  });
}

TEST(MemoryFailure, during_an_add_breaks_no_cache_file) { ExpectSoundCachesWithoutMemory(fault_desk::Adding()); }

TEST(MemoryFailure, during_a_removal_breaks_no_cache_file) { ExpectSoundCachesWithoutMemory(fault_desk::Removing()); }

void ExpectSoundDuplicateThenNone() {
  const std::string information = support::InformationText(fault_desk::kPlatformDll, fault_desk::kDll);
  const bool there = support::IsThere(fault_desk::kDll);
  if (there) {
    EXPECT_FALSE(support::IsThere(fault_desk::kInformationFile));
  } else if (support::IsThere(fault_desk::kInformationFile)) {
    EXPECT_THAT(information, StartsWith(support::ReadFile(fault_desk::kInformationFile)));
  }
  faults::Run({}, [] { EXPECT_EQ(0, fault_desk::Call({"INSTALL"})); });
  EXPECT_FALSE(support::IsThere(fault_desk::kDll));
  EXPECT_TRUE(!there || support::ReadFile(fault_desk::kInformationFile) == information);
}

TEST(MemoryFailure, during_an_install_loses_no_dll_unsaid) {
  fault_desk::OnDevice([] {
    const auto calls = faults::MeetEveryCall(
        kOutOfMemory, fault_desk::LayOutDuplicate, [] { CallShortOfMemory({"INSTALL"}); },
        [](const faults::Outcome&) { ExpectSoundDuplicateThenNone(); });
    ExpectAllocationsOfBothKinds(calls);
  });
}

}  // namespace
