// The device of the fault tests: one package, as files at the fixed paths and as records of the small platform, and the
// plug-in's events for it.
#ifndef TESTS_FAULTS_FAULT_DESK_H_
#define TESTS_FAULTS_FAULT_DESK_H_

#include <functional>
#include <optional>
#include <string>

#include "tests/support/manifests.h"

namespace fault_desk {

inline constexpr const char* kId = "org.pkg";
inline constexpr const char* kRoot = "/opt/usr/apps/org.pkg";
inline constexpr const char* kSharedResources = "/opt/usr/apps/org.pkg/shared/res/";
inline constexpr const char* kPlatformDll = "/usr/share/dotnet.orvel/netcoreapp/Dup.dll";
inline constexpr const char* kDll = "/opt/usr/apps/org.pkg/bin/Dup.dll";
inline constexpr const char* kInformationFile = "/opt/usr/apps/org.pkg/bin/Dup.dll_deleted";

// The content of a file; nothing for a missing one.
using Text = std::optional<std::string>;
Text ReadIfThere(const std::string& file);

// The expected content of the information file.
std::string Information();

// Runs `body` in a process with a new device: the package has two shared assemblies and one DLL that the platform also
// has; the cache files are missing. Must be the last statement of a test.
void OnDevice(const std::function<void()>& body);

// Restores the package's DLL and removes its information file.
void LayOutDuplicate();

// The texts of the cache files; nothing for a missing one.
struct CacheTexts {
  Text tpa;
  Text coba;
};
CacheTexts ReadCaches();
// Replaces the content of the cache directory by these files.
void LayOutCaches(const CacheTexts& texts);

// An event in a package's lifecycle.
struct Event {
  const char* hook;
  bool coba = false;  // the manifest is a CoBA package's
};

// The manifest for the event.
support::Document ManifestFor(const Event& event);

// Loads the plug-in and calls the hook for the package while calls are counted. Discards standard error. Expects that
// the hook released everything: descriptors, records, spans. Returns the hook's result; nothing after std::bad_alloc.
std::optional<int> Call(const Event& event);

// The cache texts before and after an event.
struct CacheChange {
  Event event;
  CacheTexts before;
  CacheTexts after;
};
// CLEAN of the package as a CoBA package, and its UNINSTALL.
CacheChange Adding();
CacheChange Removing();

// Expects that the next run of the event corrects the cache files, except missing or empty ones.
void ExpectRightAfterNextRun(const CacheChange& change);

// Expects that each cache file is as before, missing or as after the event, and correct after the next run.
void ExpectIntactCaches(const CacheChange& change);

// Expects that the DLL exists, or is removed and its information file is complete, partial or missing, and that the
// next INSTALL completes the work.
void ExpectConsistentDuplicate();

}  // namespace fault_desk

#endif
