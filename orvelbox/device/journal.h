// The journal of the operation that is under way on a device, for the next run in case this one is killed: which
// operation on which package, whether it is decided, and the cache files from before. Mending is done in
// installed_trees.
//
// The record is the directory "pending" of the device; it is put there and removed in one step each. It holds the file
// "begun", renamed "decided" later, with the operation and the package, and copies of the cache files.
#ifndef ORVEL_ORVELBOX_DEVICE_JOURNAL_H_
#define ORVEL_ORVELBOX_DEVICE_JOURNAL_H_

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "platform/host/device.h"

namespace orvelbox {

enum class Operation { kInstall, kUpgrade, kUninstall };

struct Pending {
  Operation operation;
  std::string package_id;
  bool decided;  // to be completed; else to be taken back
};

// Every function throws host::DeviceError.
class Journal {
 public:
  explicit Journal(host::Device device) : device_(std::move(device)) {}

  // Records that the operation begins. Leaves nothing when it fails.
  void Begin(Operation operation, const std::string& package_id) const;
  // Records that the operation is to be completed. Takes no disk space; without a record nothing is done.
  void Decide() const;
  // Gives the cache files their texts from the beginning; without a record nothing is done.
  void RestoreCaches() const;
  // Removes the record, and what is left of one that was never completed.
  void End() const;

  // The record; nothing when there is none. Throws also when it is damaged.
  std::optional<Pending> Read() const;

 private:
  std::filesystem::path Directory() const { return device_.directory / "pending"; }
  // Where the record is made, and taken apart.
  std::filesystem::path Temporary() const { return device_.directory / "pending.new"; }

  host::Device device_;
};

}  // namespace orvelbox

#endif
