// A device with an untrusted package, and a check that nothing outside of the package changes. The tests add the
// package's content.
#ifndef TESTS_HOSTILE_WATCHED_DEVICE_H_
#define TESTS_HOSTILE_WATCHED_DEVICE_H_

#include "tests/support/unit_case.h"

namespace hostile {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using doubles::Event;
using support::ApplicationElement;
using support::Document;
using support::DuplicateLine;
using support::InformationText;
using support::IsThere;
using support::kCobaFile;
using support::kTpaFile;
using support::MetadataElement;
using support::ReadFile;
using support::WriteFile;

inline constexpr const char* kId = "pkg";
inline constexpr const char* kRoot = "/opt/usr/apps/pkg";
// Files that must not change, some with names of assemblies: "A.dll", "B.dll", "sub/A.dll", "notes.txt".
inline constexpr const char* kVictims = "/opt/usr/victims";

// The temporary files of the cache files.
inline constexpr const char* kTemporaryTpa = "/opt/usr/home/owner/share/dotnet/temp_TPA.txt";
inline constexpr const char* kTemporaryCoba = "/opt/usr/home/owner/share/dotnet/temp_CoBA.txt";

// The path of `name` in the package, among the core assemblies and among the victims.
std::string InPackage(const std::string& name);
std::string Core(const std::string& name);
std::string Victim(const std::string& name);

using Hook = int(xmlDocPtr, const char*);

struct Outcome {
  int result;
  std::string standard_error;
};

class WatchedDevice {
 public:
  explicit WatchedDevice(doubles::Platform& platform) : platform_(platform) {}

  doubles::Platform& platform() const { return platform_; }

  // Sends an event of the package with a dotnet-inhouse manifest, or with `manifest`. Fails the test if anything
  // outside of the package's tree, the two cache files and their temporary files has changed afterwards, or a
  // descriptor is still open.
  Outcome Send(Hook* hook, xmlDocPtr manifest = nullptr) const;
  // The same with a manifest that has a CoBA entry.
  Outcome SendCoba(Hook* hook) const;
  // Runs `call` with the same checks.
  Outcome Watch(const std::function<int()>& call) const;

  // Runs `change` once, at the first event of the journal whose text or message begins with `text`.
  void At(const std::string& text, const std::function<void()>& change) const;

  // Does the log have exactly this message, from any function?
  bool Logged(const std::string& message) const;

 private:
  doubles::Platform& platform_;
};

// Runs the body in a new process on a new device: the package is registered and its root is an empty directory, "A.dll"
// and "B.dll" are core assemblies, and there are no cache files. Must be a test's last statement.
void OnWatchedDevice(const std::function<void(const WatchedDevice&)>& body);

// A test with such a body, whose parameter is `device`.
#define HOSTILE_TEST(suite, name) FRAMED_TEST(OnWatchedDevice, const WatchedDevice& device, suite, name)

// Creates "TPA.txt" and "CoBA.txt", each with an entry of the package and one of another.
void MakeCacheFiles();

// The names in the package's root.
std::vector<std::string> NamesInRoot();

}  // namespace hostile

#endif
