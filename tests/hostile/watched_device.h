// A device with a stranger's package on it, and a watch over everything that is not the package's. What the package
// holds is the tests' business.
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
// Files of others, among them some with names of assemblies: "A.dll", "B.dll", "sub/A.dll", "notes.txt".
inline constexpr const char* kVictims = "/opt/usr/victims";

// What the cache files are made of.
inline constexpr const char* kTemporaryTpa = "/opt/usr/home/owner/share/dotnet/temp_TPA.txt";
inline constexpr const char* kTemporaryCoba = "/opt/usr/home/owner/share/dotnet/temp_CoBA.txt";

// `name` in the package, among the core assemblies and among the victims.
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

  // Sends an event of the package with a dotnet-inhouse manifest, or with `manifest`. Fails the test when anything
  // outside of the package's tree, the two cache files and their temporary ones is not as it was afterwards, or a
  // descriptor is left open.
  Outcome Send(Hook* hook, xmlDocPtr manifest = nullptr) const;
  // The same with a manifest that carries a CoBA entry.
  Outcome SendCoba(Hook* hook) const;
  // Does `call` under the same watch.
  Outcome Watch(const std::function<int()>& call) const;

  // Does `change` once, at the first event of the journal whose text or message begins with `text`.
  void At(const std::string& text, const std::function<void()>& change) const;

  // Does the log tell exactly this, in whatever function?
  bool Logged(const std::string& message) const;

 private:
  doubles::Platform& platform_;
};

// Runs the body in a fresh process on a new device: the package is registered and its root is an empty directory,
// "A.dll" and "B.dll" are core assemblies, and no cache file is there. To be the last statement of a test.
void OnWatchedDevice(const std::function<void(const WatchedDevice&)>& body);

// A test with such a body, which knows the device as `device`.
#define HOSTILE_TEST(suite, name) FRAMED_TEST(OnWatchedDevice, const WatchedDevice& device, suite, name)

// Makes "TPA.txt" and "CoBA.txt" with an entry of the package and one of another.
void MakeCacheFiles();

// The names in the package's root.
std::vector<std::string> NamesInRoot();

}  // namespace hostile

#endif
