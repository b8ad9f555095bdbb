// The plug-in does not change the state of the installer's process, at any moment at which the process could check it,
// and prints nothing on standard output.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>

#include "tests/faults/call_paths.h"
#include "tests/faults/fault_desk.h"
#include "tests/faults/guest_watch.h"
#include "tests/faults/small_platform.h"
#include "tests/support/child.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/manifests.h"
#include "tests/support/standard_error.h"

namespace {

using fault_desk::kId;

constexpr const char* kHooks[] = {"INSTALL", "UPGRADE",          "REMOVED", "CLEAN",
                                  "CLEANUP", "RECOVERUNINSTALL", "UNDO",    "UNINSTALL"};

const std::string kOddIds[] = {"", "%s%n", "../../..", "\xff\n\x1b[31m", std::string(100000, 'x')};

int looks = 0;
guest_watch::ProcessState before;
std::set<int> inheritable_before;
int threads_before = 0;  // an emulator adds threads of its own

// Checks the process. `moment` is the platform's function that the plug-in is calling.
void ExpectNoChange(const char* moment) {
  ++looks;
  EXPECT_EQ("", guest_watch::Differences(before, guest_watch::ReadState())) << moment;
  EXPECT_EQ(threads_before, guest_watch::Threads()) << moment;
  EXPECT_EQ(inheritable_before, guest_watch::InheritableDescriptors()) << moment;
}

void SwallowError(void*, const char*, ...) {}

// Gives the process an unusual state.
void SetUnusualState() {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGUSR1, [](int) {});
  std::setlocale(LC_ALL, "C.UTF-8");
  umask(0027);
  ASSERT_EQ(0, chdir("/opt"));
  xmlSetGenericErrorFunc(&looks, SwallowError);
  xmlSetStructuredErrorFunc(&looks, [](void*, xmlErrorPtr) {});
  xmlKeepBlanksDefault(0);
  xmlLoadExtDtdDefaultValue = XML_DETECT_IDS;
}

// Calls every hook for a CoBA package with a duplicate, for an ordinary one, for one that is no dotnet package, and
// without a manifest.
void CallEveryHook(const LoadedPlugin& plugin) {
  const support::Document manifests[] = {fault_desk::ManifestFor({"", true}), fault_desk::ManifestFor({""}),
                                         support::OtherManifest(), nullptr};
  for (const support::Document& manifest : manifests) {
    for (const char* hook : kHooks) {
      fault_desk::LayOutDuplicate();
      fault_desk::LayOutCaches(fault_desk::Adding().before);
      EXPECT_EQ(0, plugin.Event(hook, manifest.get(), kId)) << hook;
      EXPECT_EQ(0, plugin.Event(hook, manifest.get(), "org.unknown")) << hook;
    }
  }
}

void OnWatchedDevice(const std::function<void(const LoadedPlugin&)>& body) {
  fault_desk::OnDevice([&] {
    SetUnusualState();
    before = guest_watch::ReadState();
    threads_before = guest_watch::Threads();
    const LoadedPlugin plugin;
    support::StandardErrorOf([&] {
      inheritable_before = guest_watch::InheritableDescriptors();
      small_platform::Now().watcher = ExpectNoChange;
      body(plugin);
      small_platform::Now().watcher = nullptr;
      ExpectNoChange("at the end");
    });
  });
}

TEST(Guest, leaves_everything_of_the_process_as_it_is) {
  OnWatchedDevice([](const LoadedPlugin& plugin) {
    CallEveryHook(plugin);
    EXPECT_GT(looks, 1000) << "the plug-in hardly called the platform";
  });
}

TEST(Guest, opens_nothing_that_an_exec_would_leave_open_and_closes_everything) {
  OnWatchedDevice([](const LoadedPlugin& plugin) {
    fault_desk::LayOutDuplicate();
    fault_desk::LayOutCaches(fault_desk::Adding().before);
    faults::OpeningsSoFar() = {};
    const std::size_t open_before = support::OpenDescriptors();
    plugin.Event("INSTALL", fault_desk::ManifestFor({""}).get(), kId);
    plugin.Event("CLEAN", fault_desk::ManifestFor({"", true}).get(), kId);
    plugin.Event("UNINSTALL", fault_desk::ManifestFor({""}).get(), kId);
    const faults::Openings openings = faults::OpeningsSoFar();
    EXPECT_FALSE(support::IsThere(fault_desk::kDll));
    EXPECT_EQ(fault_desk::Removing().after.tpa, fault_desk::ReadCaches().tpa);
    EXPECT_GT(openings.all, 15);
    EXPECT_EQ(0, openings.inheritable);
    EXPECT_EQ(open_before, support::OpenDescriptors());
  });
}

TEST(Guest, tells_nothing_on_standard_output) {
  const support::TempDir directory;
  const std::string file = directory / "output";
  OnWatchedDevice([&](const LoadedPlugin& plugin) {
    std::fflush(stdout);
    const int original = dup(STDOUT_FILENO);
    const int output = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    ASSERT_EQ(STDOUT_FILENO, dup2(output, STDOUT_FILENO));
    small_platform::Now().watcher = nullptr;
    CallEveryHook(plugin);
    std::fflush(stdout);
    dup2(original, STDOUT_FILENO);
    close(original);
    close(output);
    EXPECT_EQ("", support::ReadFile(file));
  });
}

TEST(Guest, is_left_by_an_exception_only_for_a_null_id) {
  OnWatchedDevice([](const LoadedPlugin& plugin) {
    for (const char* hook : kHooks) {
      try {
        plugin.Event(hook, fault_desk::ManifestFor({"", true}).get(), nullptr);
        EXPECT_STREQ("UNDO", hook);
      } catch (const std::logic_error& error) {
        EXPECT_STREQ("basic_string: construction from null is not valid", error.what()) << hook;
      }
      for (const std::string& id : kOddIds) {
        EXPECT_NO_THROW(plugin.Event(hook, fault_desk::ManifestFor({"", true}).get(), id.c_str())) << hook;
      }
    }
    EXPECT_EQ(0, small_platform::Now().open_spans);
  });
}

}  // namespace
