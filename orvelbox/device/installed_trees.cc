// Package trees and records, changed in steps between which the process may be killed.
#include "orvelbox/device/installed_trees.h"

#include <unistd.h>

#include "orvelbox/desk/tree.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// In the staging area; no package id begins with ".".
constexpr const char* kUnpacked = ".unpacked";

// The names of the entries of `directory`; none when it does not exist.
std::vector<std::string> NamesIn(const fs::path& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

// Removes the directory if it is empty.
void RemoveIfEmpty(const fs::path& directory) { rmdir(directory.c_str()); }

}  // namespace

InstalledTrees::InstalledTrees(host::Device device, const host::DeviceConfig& config)
    : device_(std::move(device)), root_(config.read_write_root), journal_(device_) {}

void InstalledTrees::RemoveStaged(const std::string& package_id) const {
  RemoveTree(Staging(package_id));
  RemoveIfEmpty(StagingArea());
}

UnpackPlace InstalledTrees::PlaceToUnpack() const {
  return {Staging(kUnpacked), [this] { RemoveStaged(kUnpacked); }};
}

void InstalledTrees::Stage(const fs::path& source, const std::string& package_id) const {
  host::MakeDirectory(StagingArea());
  const auto stage = source == Staging(kUnpacked) ? Move : CopyTree;
  WithRollback([&] { stage(source, Staging(package_id)); }, [&] { RemoveStaged(package_id); });
}

// Moves the tree to the staging area in one step; RemoveStaged then deletes it, which takes longer.
void InstalledTrees::MoveAside(const host::Package& package) const {
  RemoveTree(Staging(package.id));
  host::MakeDirectory(StagingArea());
  if (IsThere(Place(package))) Move(Place(package), Staging(package.id));
}

void InstalledTrees::Add(const fs::path& source, const host::Package& package) const {
  if (IsThere(Place(package))) {
    throw host::DeviceError(Place(package).string() + ": is in the way, and belongs to no installed package; " +
                            "move it away and try again");
  }
  journal_.Begin(Operation::kInstall, package.id);
  const auto put_in_place = [&] {
    Stage(source, package.id);
    WritableStore().Put(package);
    Move(Staging(package.id), Place(package));
    RemoveStaged(package.id);
  };
  WithRollback(put_in_place, [&] { UndoAddition(package); });
}

void InstalledTrees::UndoAddition(const host::Package& package) const {
  Discard(package);
  journal_.RestoreCaches();
  journal_.End();
}

// Removes the package's tree and record.
void InstalledTrees::Discard(const host::Package& package) const {
  MoveAside(package);
  RemoveStaged(package.id);
  WritableStore().Remove(package.id);
}

void InstalledTrees::Replace(const fs::path& source, const host::Package& package,
                             const host::Package& installed) const {
  journal_.Begin(Operation::kUpgrade, package.id);
  const auto put_in_place = [&] {
    Stage(source, package.id);
    host::MakeDirectory(PreviousArea());
    Move(Place(package), Previous(package.id));
    Move(Staging(package.id), Place(package));
    WritableStore().Put(package);
    RemoveStaged(package.id);
  };
  WithRollback(put_in_place, [&] { RestorePrevious(installed); });
}

void InstalledTrees::KeepUpgrade(const std::string& package_id) const {
  journal_.Decide();
  DropPrevious(package_id);
  journal_.End();
}

void InstalledTrees::RestorePrevious(const host::Package& previous) const {
  PutPreviousBack(previous);
  journal_.RestoreCaches();
  journal_.End();
}

void InstalledTrees::DropPrevious(const std::string& package_id) const {
  host::MakeDirectory(StagingArea());
  if (IsThere(Previous(package_id))) Move(Previous(package_id), Staging(package_id));
  RemoveIfEmpty(PreviousArea());
  RemoveStaged(package_id);
}

void InstalledTrees::PutPreviousBack(const host::Package& previous) const {
  if (IsThere(Previous(previous.id))) {
    MoveAside(previous);
    RemoveStaged(previous.id);
    WritableStore().Put(previous);
    Move(Previous(previous.id), Place(previous));
  }
  RemoveIfEmpty(PreviousArea());
  RemoveStaged(previous.id);
}

void InstalledTrees::BeginRemoval(const std::string& package_id) const {
  try {
    journal_.Begin(Operation::kUninstall, package_id);
  } catch (const host::DeviceError&) {
    // Uninstalling frees a full disk, so it continues without the journal.
  }
}

void InstalledTrees::UndoRemoval() const {
  journal_.RestoreCaches();
  journal_.End();
}

void InstalledTrees::Remove(const host::Package& package) const {
  journal_.Decide();
  Discard(package);
  journal_.End();
}

// Finishes an operation that was decided.
std::string InstalledTrees::Complete(const Pending& pending) const {
  if (pending.operation == Operation::kUpgrade) {
    DropPrevious(pending.package_id);
    return "an upgrade was interrupted at its end; the new version stays";
  }
  if (const auto package = Store().Find(pending.package_id)) Discard(*package);
  return "an uninstall was interrupted at its end; it is done now";
}

// Undoes the changes of trees and records by an operation that was not decided.
std::string InstalledTrees::Undo(const Pending& pending) const {
  const std::string& id = pending.package_id;
  switch (pending.operation) {
    case Operation::kInstall: {
      host::Package package;
      package.id = id;
      Discard(PlacedAt(std::move(package), RootOnDevice(id)));
      return "an install was interrupted; it was taken back";
    }
    case Operation::kUpgrade:
      if (IsThere(Previous(id))) PutPreviousBack(PlacedAt(ReadManifest(Previous(id)).package, RootOnDevice(id)));
      return "an upgrade was interrupted; the version before it is in place again";
    default:
      return "an uninstall was interrupted; the package stays installed";
  }
}

std::vector<std::string> InstalledTrees::Mend() const {
  host::RemoveUnfinished(device_.LoaderRecord());
  std::vector<std::string> mended;
  if (const auto pending = journal_.Read()) {
    const std::string outcome = pending->decided ? Complete(*pending) : Undo(*pending);
    if (!pending->decided) journal_.RestoreCaches();
    mended.push_back("mended " + pending->package_id + ": " + outcome);
  }
  journal_.End();
  for (const std::string& id : NamesIn(PreviousArea())) {
    PutPreviousBack(PlacedAt(ReadManifest(Previous(id)).package, RootOnDevice(id)));
    mended.push_back("mended " + id + ": an upgrade was interrupted; the version before it is in place again");
  }
  for (const std::string& id : NamesIn(StagingArea())) {
    RemoveStaged(id);
    mended.push_back("mended " + id + ": the files that an interrupted command left behind were removed");
  }
  for (const fs::path& area : {PreviousArea(), StagingArea()}) RemoveIfEmpty(area);
  for (const host::Package& package : Store().List()) {
    if (IsThere(Place(package))) continue;
    WritableStore().Remove(package.id);
    mended.push_back("mended " + package.id + ": its files are gone, so it is no longer installed");
  }
  return mended;
}

host::Package FindInstalled(const host::PackageStore& store, const std::string& package_id) {
  if (auto package = store.Find(package_id)) return *std::move(package);
  throw host::DeviceError(package_id + ": not installed; see what is with: orvelbox list");
}

}  // namespace orvelbox
