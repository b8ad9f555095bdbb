// The process ends at every call that changes files, one after the other. Checks the files afterwards, and after the
// next run of the same event.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/faults/fault_desk.h"
#include "tests/faults/fault_points.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"

namespace {

using faults::Fate;
using support::ReadFile;
using testing::ElementsAreArray;
using testing::IsSubsetOf;

// The process ends before a call, or in the middle of a write.
constexpr Fate kEnds[] = {Fate::kEnd, Fate::kEndHalfWritten};

// The calls that replace a file, in order.
std::vector<std::string> ReplacementOf(const std::string& name) {
  const std::string directory = support::kCacheDirectory;
  const std::string temporary = directory + "temp_" + name;
  return {"unlink " + directory + name, "fopen " + temporary,  "fputs " + temporary,  "fflush " + temporary,
          "fsync " + temporary,         "fclose " + temporary, "rename " + temporary, "sync"};
}

std::vector<std::string> ReplacementOfBoth() {
  std::vector<std::string> calls = ReplacementOf("TPA.txt");
  for (const std::string& call : ReplacementOf("CoBA.txt")) calls.push_back(call);
  return calls;
}

void ExpectIntactCachesAfterEveryEnd(const fault_desk::CacheChange& change) {
  fault_desk::OnDevice([&] {
    const std::vector<std::string> known = {"TPA.txt", "CoBA.txt", "temp_TPA.txt", "temp_CoBA.txt"};
    for (const Fate end : kEnds) {
      const auto calls = faults::MeetEveryCall(
          {faults::kChanges, end}, [&] { fault_desk::LayOutCaches(change.before); },
          [&] { fault_desk::Call(change.event); },
          [&](const faults::Outcome&) {
            EXPECT_THAT(support::NamesIn(support::kCacheDirectory), IsSubsetOf(known));
            fault_desk::ExpectIntactCaches(change);
          });
      EXPECT_THAT(calls, ElementsAreArray(ReplacementOfBoth()));
    }
  });
}

TEST(Crash, an_add_that_ends_early_leaves_each_cache_file_old_absent_or_new) {
  ExpectIntactCachesAfterEveryEnd(fault_desk::Adding());
}

TEST(Crash, a_removal_that_ends_early_leaves_each_cache_file_old_absent_or_new) {
  ExpectIntactCachesAfterEveryEnd(fault_desk::Removing());
}

TEST(Crash, a_removal_of_a_duplicate_that_ends_early_leaves_the_dll_or_its_information_as_far_as_it_came) {
  fault_desk::OnDevice([] {
    for (const Fate end : kEnds) {
      const auto calls = faults::MeetEveryCall(
          {faults::kChanges, end}, fault_desk::LayOutDuplicate, [] { fault_desk::Call({"INSTALL"}); },
          [&](const faults::Outcome&) { fault_desk::ExpectConsistentDuplicate(); });
      ASSERT_GE(calls.size(), 3u);
      EXPECT_EQ(std::string("unlink ") + fault_desk::kDll, calls[0]);
      EXPECT_EQ(std::string("open ") + fault_desk::kInformationFile, calls[1]);
      for (std::size_t i = 2; i < calls.size(); ++i) {
        EXPECT_EQ(std::string("write ") + fault_desk::kInformationFile, calls[i]);
      }
    }
    EXPECT_EQ("the platform's", ReadFile(fault_desk::kPlatformDll));
  });
}

}  // namespace
