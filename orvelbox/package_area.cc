// Package trees and records, in an order of steps that a killed run cannot spoil.
#include "orvelbox/package_area.h"

#include <unistd.h>

#include "orvelbox/manifest.h"
#include "orvelbox/tree.h"
#include "orvelbox/undo.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// In the staging area; no package id begins with ".".
constexpr const char* kUnpacked = ".unpacked";

// The names of what lies in `directory`; none when there is no such directory.
std::vector<std::string> NamesIn(const fs::path& directory) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  return names;
}

// Drops a directory that holds nothing any more.
void RemoveIfEmpty(const fs::path& directory) { rmdir(directory.c_str()); }

}  // namespace

PackageArea::PackageArea(host::Device device, const host::DeviceConfig& config)
    : device_(std::move(device)), root_(config.read_write_root) {}

std::string PackageArea::RootOnDevice(const std::string& package_id) const { return root_ + "/" + package_id; }

fs::path PackageArea::Place(const host::Package& package) const { return device_.OnDesk(package.root); }

fs::path PackageArea::StagingArea() const { return device_.OnDesk(root_) / ".staging"; }

fs::path PackageArea::Unpacking() const { return Staging(kUnpacked); }

fs::path PackageArea::PreviousArea() const { return device_.OnDesk(root_) / ".previous"; }

fs::path PackageArea::Staging(const std::string& package_id) const { return StagingArea() / package_id; }

fs::path PackageArea::Previous(const std::string& package_id) const { return PreviousArea() / package_id; }

void PackageArea::Register(const host::Package& package) const {
  host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Put(package);
}

void PackageArea::Forget(const std::string& package_id) const {
  host::PackageStore(device_.Database(), host::PackageStore::Mode::kReadWrite).Remove(package_id);
}

void PackageArea::RemoveStaged(const std::string& package_id) const {
  RemoveTree(Staging(package_id));
  RemoveIfEmpty(StagingArea());
}

void PackageArea::RemoveUnpacked() const { RemoveStaged(kUnpacked); }

void PackageArea::Stage(const fs::path& source, const std::string& package_id) const {
  MakeDirectory(StagingArea());
  const auto stage = source == Unpacking() ? Move : CopyTree;
  Attempt([&] { stage(source, Staging(package_id)); }, [&] { RemoveStaged(package_id); });
}

// Takes the tree out of its place in one step; RemoveStaged then takes its time.
void PackageArea::MoveAside(const host::Package& package) const {
  RemoveTree(Staging(package.id));
  MakeDirectory(StagingArea());
  if (IsThere(Place(package))) Move(Place(package), Staging(package.id));
}

void PackageArea::Add(const fs::path& source, const host::Package& package) const {
  if (IsThere(Place(package))) {
    throw host::DeviceError(Place(package).string() + ": is in the way, and belongs to no installed package; " +
                            "move it away and try again");
  }
  Stage(source, package.id);
  const auto put_in_place = [&] {
    Register(package);
    Move(Staging(package.id), Place(package));
    RemoveStaged(package.id);
  };
  Attempt(put_in_place, [&] { Discard(package); });
}

void PackageArea::Discard(const host::Package& package) const {
  MoveAside(package);
  RemoveStaged(package.id);
  Forget(package.id);
}

void PackageArea::Replace(const fs::path& source, const host::Package& package, const host::Package& installed) const {
  Stage(source, package.id);
  const auto put_in_place = [&] {
    MakeDirectory(PreviousArea());
    Move(Place(package), Previous(package.id));
    Move(Staging(package.id), Place(package));
    Register(package);
    RemoveStaged(package.id);
  };
  Attempt(put_in_place, [&] { RestorePrevious(installed); });
}

void PackageArea::KeepUpgrade(const std::string& package_id) const {
  MakeDirectory(StagingArea());
  Move(Previous(package_id), Staging(package_id));
  RemoveIfEmpty(PreviousArea());
  RemoveStaged(package_id);
}

void PackageArea::RestorePrevious(const host::Package& previous) const {
  if (IsThere(Previous(previous.id))) {
    MoveAside(previous);
    RemoveStaged(previous.id);
    Register(previous);
    Move(Previous(previous.id), Place(previous));
  }
  RemoveIfEmpty(PreviousArea());
  RemoveStaged(previous.id);
}

// The packages whose record has no tree.
std::vector<std::string> PackageArea::Unplaced() const {
  const host::PackageStore store(device_.Database(), host::PackageStore::Mode::kReadOnly);
  std::vector<std::string> ids;
  for (const host::Package& package : store.List()) {
    if (!IsThere(Place(package))) ids.push_back(package.id);
  }
  return ids;
}

std::vector<std::string> PackageArea::Mend() const {
  std::vector<std::string> mended;
  for (const std::string& id : NamesIn(PreviousArea())) {
    RestorePrevious(PlacedAt(ReadManifest(Previous(id)).package, RootOnDevice(id)));
    mended.push_back("mended " + id + ": an upgrade was interrupted; the version before it is in place again");
  }
  for (const std::string& id : NamesIn(StagingArea())) {
    RemoveStaged(id);
    mended.push_back("mended " + id + ": the files that an interrupted command left behind were removed");
  }
  for (const std::string& id : Unplaced()) {
    Forget(id);
    mended.push_back("mended " + id + ": its files are gone, so it is no longer installed");
  }
  return mended;
}

}  // namespace orvelbox
