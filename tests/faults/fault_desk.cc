// The device of the fault tests.
#include "tests/faults/fault_desk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <new>

#include "tests/faults/fault_points.h"
#include "tests/faults/small_platform.h"
#include "tests/support/child.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/removal_texts.h"
#include "tests/support/standard_error.h"

namespace fault_desk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kOther = "/opt/usr/apps/org.other/shared/res/";

void WriteIfAny(const char* file, const Text& text) {
  if (text) support::WriteFile(file, *text);
}

void ExpectAllGivenBack() {
  const small_platform::State& platform = small_platform::Now();
  EXPECT_EQ(0, platform.records) << "package records";
  EXPECT_EQ(0, platform.open_spans);
  EXPECT_EQ(platform.enumerations, platform.filters) << "only a filter that was enumerated stays";
  support::ExpectNoLeaks();
}

std::optional<int> CallCounted(const LoadedPlugin& plugin, const Event& event, xmlDoc* manifest) {
  try {
    const faults::Counting counting;
    return plugin.Event(event.hook, manifest, kId);
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

std::string ListOf(const std::string& entries) { return "[START]" + entries + "[END]"; }

// A complete file becomes correct; a missing or empty one stays as it is.
void ExpectRight(const Text& found, const Text& left, const Text& after) {
  EXPECT_EQ(left && !left->empty() ? after : left, found);
}

}  // namespace

Text ReadIfThere(const std::string& file) {
  return support::IsThere(file) ? Text(support::ReadFile(file)) : std::nullopt;
}

std::string Information() { return support::InformationText(kPlatformDll, kDll); }

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
  const std::size_t descriptors = support::OpenDescriptors();
  support::StandardErrorOf([&] { result = CallCounted(plugin, event, manifest.get()); });
  EXPECT_EQ(descriptors, support::OpenDescriptors());
  ExpectAllGivenBack();
  return result;
}

void ExpectRightAfterNextRun(const CacheChange& change) {
  const CacheTexts left = ReadCaches();
  faults::Run({}, [&] { EXPECT_EQ(0, Call(change.event)); });
  const CacheTexts found = ReadCaches();
  ExpectRight(found.tpa, left.tpa, change.after.tpa);
  ExpectRight(found.coba, left.coba, change.after.coba);
}

void ExpectIntactCaches(const CacheChange& change) {
  const CacheTexts found = ReadCaches();
  EXPECT_THAT(found.tpa, testing::AnyOf(change.before.tpa, std::nullopt, change.after.tpa));
  EXPECT_THAT(found.coba, testing::AnyOf(change.before.coba, std::nullopt, change.after.coba));
  ExpectRightAfterNextRun(change);
}

void ExpectConsistentDuplicate() {
  const Text dll = ReadIfThere(kDll);
  const Text told = ReadIfThere(kInformationFile);
  if (dll) {
    EXPECT_EQ("the package's", *dll);
    EXPECT_EQ(std::nullopt, told);
  } else if (told) {
    EXPECT_THAT(Information(), testing::StartsWith(*told));
  }
  faults::Run({}, [] { EXPECT_EQ(0, Call({"INSTALL"})); });
  EXPECT_FALSE(support::IsThere(kDll));
  EXPECT_EQ(dll ? Text(Information()) : told, ReadIfThere(kInformationFile));
}

CacheChange Adding() {
  const std::string other = kOther;
  const std::string own = kSharedResources;
  return {{"CLEAN", true},
          {ListOf(own + "Old.dll:" + other + "O.dll"), ListOf(own + ":" + other)},
          {ListOf(other + "O.dll:" + own + "A.dll:" + own + "B.dll"), ListOf(other + ":" + own)}};
}

CacheChange Removing() {
  const std::string other = kOther;
  const std::string own = kSharedResources;
  return {{"UNINSTALL"},
          {ListOf(other + "O.dll:" + own + "A.dll"), ListOf(other + ":" + own)},
          {ListOf(other + "O.dll"), ListOf(other)}};
}

}  // namespace fault_desk
