// The journal of the pending operation on a device: which operation on which package, whether it is decided, and the
// cache files as they were before. The next run uses it when this one is killed; installed_trees.h repairs the device.
// The journal is the directory "pending" of the device, which is created and removed in one step each. It holds the
// file "begun", later renamed "decided", with the operation and the package, and copies of the cache files.
#ifndef ORVEL_ORVELBOX_DEVICE_JOURNAL_H_
#define ORVEL_ORVELBOX_DEVICE_JOURNAL_H_

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "platform/host/device.h"

namespace orvelbox {

enum class Operation { kInstall, kUpgrade, kUninstall };

// An operation that has begun and not ended.
struct Pending {
  Operation operation;
  std::string package_id;
  bool decided;  // to be completed; otherwise to be undone
};

// Every function throws host::DeviceError.
class Journal {
 public:
  explicit Journal(host::Device device) : device_(std::move(device)) {}

  // Records that the operation begins. Leaves nothing behind when it fails.
  void Begin(Operation operation, const std::string& package_id) const;
  // Records that the operation is to be completed. Needs no disk space. Does nothing without a record.
  void Decide() const;
  // Restores the cache files to their recorded texts. Does nothing without a record.
  void RestoreCaches() const;
  // Removes the record, also an incomplete one.
  void End() const;

  // The record; nothing when there is none. Throws also when it is damaged.
  std::optional<Pending> Read() const;

 private:
  std::filesystem::path Directory() const { return device_.directory / "pending"; }
  // Where the record is created, and where it is moved before it is removed.
  std::filesystem::path Temporary() const { return device_.directory / "pending.new"; }

  host::Device device_;
};

}  // namespace orvelbox

#endif
