// Every call of an event fails once, one after the other. Checks the files afterwards, that all resources were released
// (fault_desk's Call expects that), and that the next run succeeds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/faults/fault_desk.h"
#include "tests/faults/fault_points.h"
#include "tests/faults/small_platform.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/uris.h"

namespace {

using fault_desk::Information;
using fault_desk::Text;
using faults::Fate;
using faults::Outcome;
using support::ReadFile;
using testing::AnyOf;
using testing::Contains;
using testing::Eq;
using testing::StartsWith;

constexpr unsigned kEveryCall = faults::kChanges | faults::kReads | faults::kPlatform;

std::string FunctionOf(const std::string& call) { return call.substr(0, call.find(' ')); }

bool Concerns(const std::string& call, const std::string& part) { return call.find(part) != std::string::npos; }

bool IsOneOf(const std::string& name, const std::vector<std::string>& names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The calls that find the root of a package.
bool AsksForRoot(const std::string& call) {
  return IsOneOf(call, {"pkgmgrinfo_pkginfo_get_pkginfo", "pkgmgrinfo_pkginfo_get_mainappid",
                        "pkgmgrinfo_appinfo_get_appinfo", "pkgmgrinfo_appinfo_get_root_path"});
}

// A cache file after a call on it failed.
Text CacheAfterFailure(const std::string& call, const Text& before, const Text& after) {
  const std::string function = FunctionOf(call);
  if (IsOneOf(function, {"access", "open", "read"})) return before;  // it reads as empty and is not changed
  if (IsOneOf(function, {"lstat", "fopen", "rename"})) return std::nullopt;
  if (function == "fputs") return "";  // the short file replaces the old one without an error
  return after;                        // unlink, fflush, fsync, fclose: compensated or without effect
}

Text Expected(const std::string& call, const std::string& name, const Text& before, const Text& after) {
  if (AsksForRoot(call)) return before;
  return Concerns(call, name) ? CacheAfterFailure(call, before, after) : after;
}

void ExpectCache(const std::string& call, const std::string& name, const Text& before, const Text& after,
                 const Text& found) {
  if (call.rfind("lstat ", 0) == 0 && Concerns(call, "temp_" + name)) {
    // lstat is called twice: to see whether it is a link, which must succeed, and whether it blocks the name, which may
    // fail.
    EXPECT_THAT(found, AnyOf(Eq(std::nullopt), Eq(after)));
  } else {
    EXPECT_EQ(Expected(call, name, before, after), found);
  }
}

// None, some or all assemblies were found; without one the file is unchanged.
void ExpectListOfSomeAssemblies(const fault_desk::CacheChange& change, const Text& found) {
  const std::string& whole = *change.after.tpa;
  const std::string end = "[END]";
  const std::size_t first = whole.find(std::string(":") + fault_desk::kSharedResources);
  const std::size_t second = whole.find(':', first + 1);
  EXPECT_THAT(found, AnyOf(Eq(change.before.tpa), Eq(whole), Eq(whole.substr(0, second) + end),
                           Eq(whole.substr(0, first) + whole.substr(second))));
}

void ExpectCachesAfterFailure(const fault_desk::CacheChange& change, const std::string& call) {
  const fault_desk::CacheTexts found = fault_desk::ReadCaches();
  if (Concerns(call, "org.pkg/shared/res")) {
    ExpectListOfSomeAssemblies(change, found.tpa);
  } else {
    ExpectCache(call, "TPA.txt", change.before.tpa, change.after.tpa, found.tpa);
  }
  ExpectCache(call, "CoBA.txt", change.before.coba, change.after.coba, found.coba);
}

void ExpectCachesAfterEveryFailure(const fault_desk::CacheChange& change) {
  fault_desk::OnDevice([&] {
    const auto calls = faults::MeetEveryCall(
        {kEveryCall, Fate::kFail}, [&] { fault_desk::LayOutCaches(change.before); },
        [&] { EXPECT_EQ(0, fault_desk::Call(change.event)); },
        [&](const Outcome& outcome) {
          ExpectCachesAfterFailure(change, outcome.call);
          fault_desk::ExpectRightAfterNextRun(change);
        });
    if (testing::Test::HasFailure()) return;
    for (const char* function : {"access", "open", "read", "unlink", "lstat", "fopen", "fputs", "fflush", "fsync",
                                 "fclose", "rename", "sync", "pkgmgrinfo_appinfo_get_root_path",
                                 "pkgmgrinfo_appinfo_destroy_appinfo", "aul_restart_loader", "__dlog_print"}) {
      EXPECT_THAT(calls, Contains(StartsWith(function)));
    }
  });
}

TEST(Failure, of_any_call_of_an_add_leaves_the_cache_files_as_specified) {
  ExpectCachesAfterEveryFailure(fault_desk::Adding());
}

TEST(Failure, of_any_call_of_a_removal_leaves_the_cache_files_as_specified) {
  ExpectCachesAfterEveryFailure(fault_desk::Removing());
}

// --- Duplicates ---

// The state of the package's DLL.
struct Duplicate {
  bool there;
  Text information;
};

bool operator==(const Duplicate& a, const Duplicate& b) { return a.there == b.there && a.information == b.information; }

void PrintTo(const Duplicate& duplicate, std::ostream* out) {
  *out << (duplicate.there ? "the DLL, " : "no DLL, ") << duplicate.information.value_or("no information file");
}

Duplicate ReadDuplicate() {
  return {support::IsThere(fault_desk::kDll), fault_desk::ReadIfThere(fault_desk::kInformationFile)};
}

void ExpectDuplicateAfterFailure(const std::string& call) {
  const std::string information = Information();
  const Duplicate untouched{true, std::nullopt};
  const Duplicate removed{false, information};
  const Duplicate found = ReadDuplicate();
  const std::string function = FunctionOf(call);
  if (function == "unlink") {
    EXPECT_EQ((Duplicate{true, information}), found);
  } else if (function == "open" && Concerns(call, fault_desk::kInformationFile)) {
    EXPECT_EQ((Duplicate{false, std::nullopt}), found);
  } else if (function == "write") {
    ASSERT_TRUE(found.information);
    EXPECT_EQ(*found.information, information.substr(0, found.information->size()));
  } else if (function == "ovplatform_getenv" || call == std::string("lstat ") + fault_desk::kDll) {
    EXPECT_EQ(untouched, found);
  } else if (IsOneOf(function, {"opendir", "readdir", "open", "lstat", "stat"}) || AsksForRoot(call)) {
    EXPECT_THAT(found, AnyOf(untouched, removed));  // depends on whether the directory could be read
  } else {
    EXPECT_EQ(removed, found);
  }
}

constexpr const char* kResult = "/opt/usr/result";

// The event, in a process that records the hook's result.
void Install() {
  const auto result = fault_desk::Call({"INSTALL"});
  support::WriteFile(kResult, result ? std::to_string(*result) : "bad_alloc");
}

std::vector<std::string> FailEveryCallOfInstall(const std::function<void(const std::string&)>& check) {
  return faults::MeetEveryCall({kEveryCall, Fate::kFail}, fault_desk::LayOutDuplicate, Install,
                               [&](const Outcome& outcome) {
                                 ExpectDuplicateAfterFailure(outcome.call);
                                 check(outcome.call);
                               });
}

TEST(Failure, of_any_call_of_an_install_fails_no_install) {
  fault_desk::OnDevice([] {
    const auto calls = FailEveryCallOfInstall([](const std::string&) {
      EXPECT_EQ("0", ReadFile(kResult));
      const Duplicate left = ReadDuplicate();
      faults::Run({}, Install);
      EXPECT_EQ((Duplicate{false, left.there ? Text(Information()) : left.information}), ReadDuplicate());
    });
    for (const char* function : {"opendir", "readdir", "lstat", "unlink", "open", "write", "ovplatform_getenv",
                                 "package_info_create", "package_info_foreach_privilege_info", "package_info_destroy",
                                 "pkgmgrinfo_appinfo_metadata_filter_create", "pkgmgrinfo_appinfo_metadata_filter_add",
                                 "pkgmgrinfo_appinfo_metadata_filter_foreach", "pkgmgrinfo_pkginfo_get_mainappid"}) {
      EXPECT_THAT(calls, Contains(StartsWith(function)));
    }
    EXPECT_EQ("the platform's", ReadFile(fault_desk::kPlatformDll));
  });
}

// An install under debugging may succeed only if the duplicate or the privilege was not seen.
TEST(Failure, of_any_call_of_a_debugged_install_refuses_it_whenever_duplicate_and_privilege_were_seen) {
  fault_desk::OnDevice([] {
    small_platform::Now().packages[0].privilege = support::kDebuggingPrivilege;
    FailEveryCallOfInstall([](const std::string& call) {
      const bool may_miss = IsOneOf(FunctionOf(call), {"opendir", "readdir", "lstat", "package_info_create",
                                                       "package_info_foreach_privilege_info"});
      EXPECT_THAT(ReadFile(kResult), AnyOf("-1", may_miss ? "0" : "-1"));
    });
  });
}

}  // namespace
