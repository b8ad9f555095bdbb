// What the fault tests work on: a device with one package, as files at the fixed paths and as records of the small
// platform, and the plug-in's events upon it.
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

// What belongs into the information file.
std::string Information();

// Runs `body` in a process with a new device: the package has two shared assemblies and one DLL that the platform has
// as well; the cache files are missing. To be the last statement of a test.
void OnDevice(const std::function<void()>& body);

// Takes care that the package's DLL is there and its information file is not.
void LayOutDuplicate();

// The texts of the cache files; nothing for a missing one.
struct CacheTexts {
  Text tpa;
  Text coba;
};
CacheTexts ReadCaches();
// Makes these the only files of the cache directory.
void LayOutCaches(const CacheTexts& texts);

// An event of a package's life.
struct Event {
  const char* hook;
  bool coba = false;  // the manifest is a CoBA package's
};

// The manifest with which the event comes.
support::Document ManifestFor(const Event& event);

// Loads the plug-in and calls the hook for the package while calls are counted. Standard error is swallowed.
// Expects that the hook gave everything back: descriptors, records, spans. Returns the hook's result, or nothing when
// std::bad_alloc left it.
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

// Expects that the next run of the event makes the cache files right, but for those that are missing or empty.
void ExpectRightAfterNextRun(const CacheChange& change);

// Expects that each cache file is as before, missing or as after the event, and right after the next run.
void ExpectSoundCaches(const CacheChange& change);

// Expects that the DLL is whole, or gone and its information file whole, begun or missing; and that the next INSTALL
// goes on from there.
void ExpectSoundDuplicate();

}  // namespace fault_desk

#endif
