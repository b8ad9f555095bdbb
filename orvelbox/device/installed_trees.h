// The read-write application root of a device: how a package's tree and its record get in, get replaced and get out,
// so that a process killed in between loses nothing. Hooks are called elsewhere.
//
// Beside the packages lie two directories of orvelbox's own, there only while a command works:
//   .staging/ID    a tree on its way in or out: rubbish after a killed run
//   .previous/ID   the version that an upgrade replaces: put back after a killed run
// Which operation was under way, and the cache files from before its hooks, stand in the device's pending note. A
// record without a tree has lost its files and is forgotten. Of the steps of a removal, those that need disk space come
// after those that free some.
#ifndef ORVEL_ORVELBOX_DEVICE_INSTALLED_TREES_H_
#define ORVEL_ORVELBOX_DEVICE_INSTALLED_TREES_H_

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "orvelbox/device/journal.h"
#include "orvelbox/package/source.h"
#include "platform/host/device.h"
#include "platform/host/package_store.h"

namespace orvelbox {

// Every function throws host::DeviceError. None of them keeps the package database open.
class InstalledTrees {
 public:
  InstalledTrees(host::Device device, const host::DeviceConfig& config);

  // Where the tree of a new package is to stand on the device.
  std::string RootOnDevice(const std::string& package_id) const;
  // Where the package's tree stands on the desk.
  std::filesystem::path Place(const host::Package& package) const;

  // Where a package may be unpacked before Add or Replace take it from there. After a killed run Mend clears it. Must
  // not outlive this object.
  UnpackPlace PlaceToUnpack() const;

  // Puts a copy of `source` in place and registers `package` (PlacedAt its root). The package is there for good with
  // KeepAddition and gone, the cache files as before, with TakeBackAddition. Leaves nothing when it fails.
  void Add(const std::filesystem::path& source, const host::Package& package) const;
  void KeepAddition() const;
  void TakeBackAddition(const host::Package& package) const;

  // Puts a copy of `source` in the place of the installed package and registers `package`; the replaced version is
  // kept until KeepUpgrade or RestorePrevious. Both have the same root. Leaves the installed version as it was when it
  // fails.
  void Replace(const std::filesystem::path& source, const host::Package& package, const host::Package& installed) const;
  void KeepUpgrade(const std::string& package_id) const;
  // Puts the version that Replace kept, `previous`, back, and the cache files as they were.
  void RestorePrevious(const host::Package& previous) const;

  // Before the hooks of a removal: a run that is killed from now on, and before Remove, is taken back.
  void BeginRemoval(const std::string& package_id) const;
  // The package stays, and the cache files are left as they are.
  void AbandonRemoval() const;
  // The package stays, and the cache files become what they were.
  void TakeBackRemoval() const;
  // Takes the package's tree and record away.
  void Remove(const host::Package& package) const;

  // Mends what a killed run left behind. Returns one line for people per package that was mended.
  std::vector<std::string> Mend() const;

 private:
  std::filesystem::path StagingArea() const;
  std::filesystem::path PreviousArea() const;
  std::filesystem::path Unpacked() const;
  std::filesystem::path Staging(const std::string& package_id) const;
  std::filesystem::path Previous(const std::string& package_id) const;
  void Stage(const std::filesystem::path& source, const std::string& package_id) const;
  void MoveAside(const host::Package& package) const;
  void Discard(const host::Package& package) const;
  void DropPrevious(const std::string& package_id) const;
  void PutPreviousBack(const host::Package& previous) const;
  std::string Complete(const Pending& pending) const;
  std::string TakeBack(const Pending& pending) const;
  void RemoveStaged(const std::string& package_id) const;
  void Register(const host::Package& package) const;
  std::optional<host::Package> Registered(const std::string& package_id) const;
  void Forget(const std::string& package_id) const;
  std::vector<std::string> Unplaced() const;

  host::Device device_;
  std::string root_;  // on the device
  Journal journal_;
};

// The record of an installed package in `store`. Throws host::DeviceError when it is not installed.
host::Package FindInstalled(const host::PackageStore& store, const std::string& package_id);

}  // namespace orvelbox

#endif
