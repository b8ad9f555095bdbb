// The device of the fault tests.
#include "tests/faults/fault_desk.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <new>

#include "tests/faults/fault_points.h"
#include "tests/faults/small_platform.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/standard_error.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace fault_desk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOther = "/opt/usr/apps/org.other/shared/res/";

std::optional<std::string> ReadIfThere(const char* file) {
  if (!support::IsThere(file)) return std::nullopt;
  return support::ReadFile(file);
}

void WriteIfAny(const char* file, const std::optional<std::string>& text) {
  if (text) support::WriteFile(file, *text);
}

std::size_t OpenDescriptors() { return support::NamesIn("/proc/self/fd").size(); }

void ExpectNoLeaks() {
#if defined(__SANITIZE_ADDRESS__)
  EXPECT_EQ(0, __lsan_do_recoverable_leak_check()) << "memory was leaked";
#endif
}

void ExpectAllGivenBack() {
  const small_platform::State& platform = small_platform::Now();
  EXPECT_EQ(0, platform.records) << "package records";
  EXPECT_EQ(0, platform.open_spans);
  EXPECT_EQ(platform.enumerations, platform.filters) << "only a filter that was enumerated stays";
  ExpectNoLeaks();
}

std::optional<int> CallCounted(const LoadedPlugin& plugin, const Event& event, xmlDoc* manifest) {
  try {
    const faults::Counting counting;
    return plugin.Event(event.hook, manifest, kId);
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

std::string Text(const std::string& entries) { return "[START]" + entries + "[END]"; }

}  // namespace

void OnDevice(const std::function<void()>& body) {
  support::OnDevice([&] {
    for (const char* path : {"/opt/usr", "/usr/share/dotnet.orvel"}) faults::Watch(fs::canonical(path), path);
    small_platform::Now().packages[0] = {kId, kRoot, true, nullptr};
    for (const char* name : {"A.dll", "B.dll"}) support::WriteFile(std::string(kSharedResources) + name);
    support::WriteFile(kPlatformDll, "the platform's");
    body();
  });
}

void LayOutDuplicate() {
  support::WriteFile(kDll, "the package's");
  fs::remove(kInformationFile);
}

CacheTexts ReadCaches() { return {ReadIfThere(support::kTpaFile), ReadIfThere(support::kCobaFile)}; }

void LayOutCaches(const CacheTexts& texts) {
  for (const fs::directory_entry& entry : fs::directory_iterator(support::kCacheDirectory)) fs::remove(entry);
  WriteIfAny(support::kTpaFile, texts.tpa);
  WriteIfAny(support::kCobaFile, texts.coba);
}

support::Document ManifestFor(const Event& event) {
  return event.coba ? support::CobaManifest() : support::DotnetManifest();
}

std::optional<int> Call(const Event& event) {
  const LoadedPlugin plugin;
  const support::Document manifest = ManifestFor(event);
  std::optional<int> result;
  const std::size_t descriptors = OpenDescriptors();
  support::StandardErrorOf([&] { result = CallCounted(plugin, event, manifest.get()); });
  EXPECT_EQ(descriptors, OpenDescriptors());
  ExpectAllGivenBack();
  return result;
}

CacheChange Adding() {
  const std::string other = kOther;
  const std::string own = kSharedResources;
  return {{"CLEAN", true},
          {Text(own + "Old.dll:" + other + "O.dll"), Text(own + ":" + other)},
          {Text(other + "O.dll:" + own + "A.dll:" + own + "B.dll"), Text(other + ":" + own)}};
}

CacheChange Removing() {
  const std::string other = kOther;
  const std::string own = kSharedResources;
  return {{"UNINSTALL"},
          {Text(other + "O.dll:" + own + "A.dll"), Text(other + ":" + own)},
          {Text(other + "O.dll"), Text(other)}};
}

}  // namespace fault_desk
