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

// Runs `body` in a process with a new device: the package has two shared assemblies and one DLL that the platform has
// as well; the cache files are missing. To be the last statement of a test.
void OnDevice(const std::function<void()>& body);

// Takes care that the package's DLL is there and its information file is not.
void LayOutDuplicate();

// The texts of the cache files; nothing for a missing one.
struct CacheTexts {
  std::optional<std::string> tpa;
  std::optional<std::string> coba;
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

}  // namespace fault_desk

#endif
