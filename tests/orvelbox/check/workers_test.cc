// Requests for checks: the threads, with their order, bounds and interruption, and privileges' names.
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <thread>

#include "orvelbox/check/check.h"
#include "platform/host/child_process.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/uris.h"

namespace orvelbox {
namespace {

CheckedPackage Named(const std::string& name) {
  CheckedPackage package;
  package.name = name;
  return package;
}

struct Results : CheckReceiver {
  void Receive(CheckedPackage package) override { names.push_back(package.name); }
  void Finished(std::size_t packages) override {
    EXPECT_GE(packages, through);
    through = packages;
  }

  std::vector<std::string> names;
  std::size_t through = 0;
};

std::vector<std::string> ResultsOf(std::size_t count, unsigned threads,
                                   const std::function<std::string(std::size_t)>& work) {
  Results results;
  const host::HeldSignals signals;
  RunOnThreads(
      count, threads, [&](std::size_t number) { return Named(work(number)); }, results);
  EXPECT_EQ(results.through, count);
  return results.names;
}

TEST(Workers, results_come_in_order_whoever_is_through_first) {
  std::vector<std::string> expected;
  for (int i = 0; i < 20; ++i) expected.push_back(std::to_string(i));
  const auto work = [](std::size_t i) {
    if (i % 3 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return std::to_string(i);
  };
  for (const unsigned threads : {1U, 3U, 64U}) EXPECT_EQ(ResultsOf(20, threads, work), expected);
}

TEST(Workers, nothing_to_do_is_done_at_once) {
  EXPECT_THAT(ResultsOf(0, 4, [](std::size_t) { return std::string("never"); }), IsEmpty());
}

TEST(Workers, work_goes_on_at_the_same_time) {
  std::atomic<int> begun{0};
  const auto meet = [&](std::size_t) {
    ++begun;
    while (begun < 2) std::this_thread::yield();
    return std::string();
  };
  EXPECT_EQ(ResultsOf(2, 2, meet).size(), 2U);
}

// While the first of 20 packages with so many DLLs each takes long, two threads begin `expected` of them.
void ExpectBegunBehindSlowWork(std::size_t dlls, std::size_t expected) {
  std::atomic<std::size_t> begun{0};
  std::size_t begun_meanwhile = 0;
  const auto work = [&](std::size_t number) {
    ++begun;
    if (number == 0) {
      for (int patience = 10'000; begun < expected && patience > 0; --patience) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
      begun_meanwhile = begun;
    }
    CheckedPackage package;
    package.dlls.resize(dlls);
    return package;
  };
  Results results;
  const host::HeldSignals signals;
  RunOnThreads(20, 2, work, results);
  EXPECT_EQ(results.names.size(), 20U);
  EXPECT_EQ(begun_meanwhile, expected);
}

TEST(Workers, results_that_wait_behind_slow_work_are_few) { ExpectBegunBehindSlowWork(0, 8); }

TEST(Workers, no_work_begins_while_large_results_wait) {
  ExpectBegunBehindSlowWork(20'000, 2);
  ExpectBegunBehindSlowWork(19'999, 3);
}

TEST(Workers, an_interruption_stops_the_work) {
  EXPECT_EXIT(
      {
        const auto interrupt = [](std::size_t number) {
          if (number == 0) kill(getpid(), SIGTERM);
          std::this_thread::sleep_for(std::chrono::milliseconds(1));
          return std::string();
        };
        try {
          ResultsOf(1'000'000, 2, interrupt);
        } catch (const host::DeviceError&) {
          _exit(0);  // the signal itself came with the end of HeldSignals, before this
        }
      },
      testing::KilledBySignal(SIGTERM), "");
}

TEST(Privilege, short_names_are_those_at_the_ends_of_the_uris) {
  EXPECT_EQ(PrivilegeUri("platform"), support::kPlatformPrivilege);
  EXPECT_EQ(PrivilegeUri("appdebugging"), support::kDebuggingPrivilege);
  EXPECT_EQ(PrivilegeUri("http://x/y"), "http://x/y");
  EXPECT_THROW(PrivilegeUri("bogus"), std::invalid_argument);
}

}  // namespace
}  // namespace orvelbox
