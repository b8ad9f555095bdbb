// The pass over the realistic package does no more work than recorded here.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>

#include "bench/device_tree.h"
#include "platform/host/json.h"
#include "tests/performance/system_calls.h"
#include "tests/support/child.h"
#include "tests/support/files.h"

namespace {

// Recorded with the release build; both compilers give the same counts. After an improvement, record the lower counts.
constexpr long kSystemCalls = 288;
constexpr long kAllocations = 1725;

long Allowed(long recorded) { return recorded + recorded / 10; }

TEST(Counts, the_pass_over_the_realistic_package_does_no_more_than_recorded) {
  const support::TempDir root;
  bench::MakeTree(root.path(), bench::RealisticShape());
  support::WithFixedPaths(root.path(), [] {
    const std::optional<MeasuredRun> run = RunTraced(BENCH_PLUGIN, "pass");
    ASSERT_TRUE(run.has_value()) << "this machine does not let processes be traced";
    const auto report = host::ParseJson(run->report);
    // The pass did its work: 20 duplicates, each with its lines and spans.
    EXPECT_EQ(308, report.at("lines").get<long>());
    EXPECT_EQ(184, report.at("spans").get<long>());
    EXPECT_LT(0, run->system_calls);
    EXPECT_LE(run->system_calls, Allowed(kSystemCalls)) << "system calls";
    EXPECT_LE(report.at("allocations").get<long>(), Allowed(kAllocations)) << "allocations";
  });
}

}  // namespace
