// The packages in the read-write application root of a device: adds, replaces and removes trees and their records. A
// process may be killed after any step; Mend then repairs the device. Hooks are called elsewhere.
// During an operation, two directories lie beside the packages:
//   .staging/ID    a tree that is being installed or removed; deleted after a killed run
//   .previous/ID   the version that an upgrade replaces; restored after a killed run
// The device's journal records the pending operation and the cache files as they were before its hooks. A record
// without a tree has lost its files and is deleted. A removal first frees disk space, then takes the steps that need
// some.
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

  // The root path on the device for a new package.
  std::string RootOnDevice(const std::string& package_id) const { return root_ + "/" + package_id; }
  // The path of the package's tree on the desk.
  std::filesystem::path Place(const host::Package& package) const { return device_.OnDesk(package.root); }

  // Where a package may be unpacked; Add or Replace then move it. Mend clears it after a killed run. Must not outlive
  // this object.
  UnpackPlace PlaceToUnpack() const;

  // Copies `source` into place and registers `package` (PlacedAt its root). KeepAddition makes this permanent;
  // UndoAddition undoes it and restores the cache files. When Add fails, it leaves nothing behind.
  void Add(const std::filesystem::path& source, const host::Package& package) const;
  void KeepAddition() const { journal_.End(); }
  void UndoAddition(const host::Package& package) const;

  // Replaces the tree of the installed package by a copy of `source` and registers `package`. Keeps the replaced
  // version until KeepUpgrade or RestorePrevious. Both have the same root. When Replace fails, the installed version is
  // unchanged.
  void Replace(const std::filesystem::path& source, const host::Package& package, const host::Package& installed) const;
  void KeepUpgrade(const std::string& package_id) const;
  // Restores the version that Replace kept, `previous`, and the cache files.
  void RestorePrevious(const host::Package& previous) const;

  // To be called before the hooks of a removal: until Remove, a killed run is undone.
  void BeginRemoval(const std::string& package_id) const;
  // Keeps the package and restores the cache files.
  void UndoRemoval() const;
  // Removes the package's tree and record.
  void Remove(const host::Package& package) const;

  // Repairs the device after a killed run. Returns one line for people per repaired package.
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
  std::string Undo(const Pending& pending) const;
  void RemoveStaged(const std::string& package_id) const;

  host::Device device_;
  std::string root_;  // on the device
  Journal journal_;
};

// The record of an installed package in `store`. Throws host::DeviceError when it is not installed.
host::Package FindInstalled(const host::PackageStore& store, const std::string& package_id);

}  // namespace orvelbox

#endif
