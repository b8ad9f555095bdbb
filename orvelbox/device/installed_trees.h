// The packages in the read-write application root of a device: adds, replaces and removes trees and their records in
// steps after each of which a killed run can be mended. Hooks are called elsewhere.
//
// Beside the packages lie two directories of orvelbox's own, there only while a command works:
//   .staging/ID    a tree that is being installed or removed: discarded after a killed run
//   .previous/ID   the version that an upgrade replaces: put back after a killed run
// Which operation was under way, and the cache files from before its hooks, are recorded in the device's journal. A
// record without a tree has lost its files and is forgotten. Of the steps of a removal, those that need disk space come
// after those that free some.
#ifndef ORVEL_ORVELBOX_DEVICE_INSTALLED_TREES_H_
#define ORVEL_ORVELBOX_DEVICE_INSTALLED_TREES_H_

#include <filesystem>
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
  std::string RootOnDevice(const std::string& package_id) const { return root_ + "/" + package_id; }
  // Where the package's tree stands on the desk.
  std::filesystem::path Place(const host::Package& package) const { return device_.OnDesk(package.root); }

  // Where a package may be unpacked before Add or Replace take it from there. After a killed run Mend clears it. Must
  // not outlive this object.
  UnpackPlace PlaceToUnpack() const;

  // Puts a copy of `source` in place and registers `package` (PlacedAt its root). The package is there for good with
  // KeepAddition and gone, the cache files as before, with TakeBackAddition. Leaves nothing when it fails.
  void Add(const std::filesystem::path& source, const host::Package& package) const;
  void KeepAddition() const { journal_.End(); }
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
  void AbandonRemoval() const { journal_.End(); }
  // The package stays, and the cache files become what they were.
  void TakeBackRemoval() const;
  // Takes the package's tree and record away.
  void Remove(const host::Package& package) const;

  // Mends what a killed run left behind. Returns one line for people per package that was mended.
  std::vector<std::string> Mend() const;

 private:
  std::filesystem::path StagingArea() const { return device_.OnDesk(root_) / ".staging"; }
  std::filesystem::path PreviousArea() const { return device_.OnDesk(root_) / ".previous"; }
  std::filesystem::path Staging(const std::string& package_id) const { return StagingArea() / package_id; }
  std::filesystem::path Previous(const std::string& package_id) const { return PreviousArea() / package_id; }
  host::PackageStore Store() const { return {device_.Database(), host::PackageStore::Mode::kReadOnly}; }
  host::PackageStore WritableStore() const { return {device_.Database(), host::PackageStore::Mode::kReadWrite}; }
  void Stage(const std::filesystem::path& source, const std::string& package_id) const;
  void MoveAside(const host::Package& package) const;
  void Discard(const host::Package& package) const;
  void DropPrevious(const std::string& package_id) const;
  void PutPreviousBack(const host::Package& previous) const;
  std::string Complete(const Pending& pending) const;
  std::string TakeBack(const Pending& pending) const;
  void RemoveStaged(const std::string& package_id) const;

  host::Device device_;
  std::string root_;  // on the device
  Journal journal_;
};

// The record of an installed package in `store`. Throws host::DeviceError when it is not installed.
host::Package FindInstalled(const host::PackageStore& store, const std::string& package_id);

}  // namespace orvelbox

#endif
