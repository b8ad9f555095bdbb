// Compares everything outside of the package before and after.
#include "tests/hostile/watched_device.h"

#include <sys/stat.h>

#include <set>

namespace hostile {

namespace {

constexpr const char* kWatched[] = {"/usr/share/dotnet.orvel", "/opt/usr"};

using Snapshot = std::map<std::string, std::string>;

// Directories whose own metadata changes when a cache file or the package's root is replaced.
bool ContainsChangeable(const fs::path& path) {
  return path / "" == fs::path(support::kCacheDirectory) || path == fs::path(kRoot).parent_path();
}

// The properties of the entry that must not change.
std::string Description(const fs::directory_entry& entry) {
  struct stat status;
  if (lstat(entry.path().c_str(), &status) != 0) return "cannot be examined";
  std::string text = std::to_string(status.st_mode) + " of " + std::to_string(status.st_uid) + ":" +
                     std::to_string(status.st_gid) + ", inode " + std::to_string(status.st_ino);
  if (!ContainsChangeable(entry.path())) {
    text += ", changed " + std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec);
  }
  if (S_ISLNK(status.st_mode)) return text + ", to " + fs::read_symlink(entry.path()).string();
  return S_ISREG(status.st_mode) ? text + ", holds " + ReadFile(entry.path()) : text;
}

bool IsChangeable(const fs::path& path) {
  return path == kRoot || path == kTpaFile || path == kCobaFile || path == kTemporaryTpa || path == kTemporaryCoba;
}

Snapshot Everything() {
  Snapshot snapshot;
  for (const char* area : kWatched) {
    for (auto entry = fs::recursive_directory_iterator(area); entry != fs::recursive_directory_iterator(); ++entry) {
      if (IsChangeable(entry->path())) {
        entry.disable_recursion_pending();
      } else {
        snapshot[entry->path().string()] = Description(*entry);
      }
    }
  }
  return snapshot;
}

// The entries of the first snapshot that are missing or different in the second.
std::string Missing(const Snapshot& first, const Snapshot& second) {
  std::string text;
  for (const auto& [path, description] : first) {
    const auto entry = second.find(path);
    if (entry == second.end() || entry->second != description) text += path + ": " + description + "\n";
  }
  return text;
}

void ExpectUnchanged(const Snapshot& before, const Snapshot& after) {
  EXPECT_EQ("", Missing(before, after)) << "was so outside of the package before";
  EXPECT_EQ("", Missing(after, before)) << "is so outside of the package now";
}

// The text that identifies `event`: a message, or the text of any other event.
std::string TextOf(const doubles::Event& event) {
  return event.kind == doubles::Event::Kind::kLog ? doubles::MessageOf(event.log) : event.text;
}

void Populate() {
  WriteFile(Core("A.dll"), "the platform's A");
  WriteFile(Core("B.dll"), "the platform's B");
  for (const char* name : {"A.dll", "B.dll", "sub/A.dll", "notes.txt"}) WriteFile(Victim(name), "of others");
  fs::create_directories(kRoot);
}

}  // namespace

std::string InPackage(const std::string& name) { return std::string(kRoot) + "/" + name; }
std::string Core(const std::string& name) { return support::kCoreDirectory + name; }
std::string Victim(const std::string& name) { return std::string(kVictims) + "/" + name; }

Outcome WatchedDevice::Watch(const std::function<int()>& call) const {
  const Snapshot before = Everything();
  const auto open_before = support::NamesIn("/proc/self/fd");
  Outcome outcome{0, {}};
  outcome.standard_error = support::StandardErrorOf([&] { outcome.result = call(); });
  EXPECT_EQ(open_before, support::NamesIn("/proc/self/fd")) << "descriptors were left open";
  ExpectUnchanged(before, Everything());
  return outcome;
}

Outcome WatchedDevice::Send(Hook* hook, xmlDocPtr manifest) const {
  const Document usual = support::DotnetManifest();
  return Watch([&] { return hook(manifest == nullptr ? usual.get() : manifest, kId); });
}

Outcome WatchedDevice::SendCoba(Hook* hook) const { return Send(hook, support::CobaManifest().get()); }

void WatchedDevice::At(const std::string& text, const std::function<void()>& change) const {
  platform_.on_event = [text, change, &platform = platform_](const doubles::Event& event) {
    if (TextOf(event).rfind(text, 0) != 0) return;
    platform.on_event = nullptr;
    change();
  };
}

bool WatchedDevice::Logged(const std::string& message) const {
  const std::vector<std::string> messages = platform_.Messages();
  return std::set<std::string>(messages.begin(), messages.end()).count(message) != 0;
}

void OnWatchedDevice(const std::function<void(const WatchedDevice&)>& body) {
  unit::FreshOnDevice([&](doubles::Platform& platform) {
    platform.packages.push_back(doubles::MakePackage(kId, kRoot));
    Populate();
    body(WatchedDevice(platform));
  });
}

void MakeCacheFiles() {
  WriteFile(kTpaFile, "[START]" + InPackage("shared/res/X.dll") + ":/opt/usr/apps/other/Y.dll[END]");
  WriteFile(kCobaFile, "[START]" + InPackage("shared/res/") + ":/opt/usr/apps/other/[END]");
}

std::vector<std::string> NamesInRoot() { return support::NamesIn(kRoot); }

}  // namespace hostile
