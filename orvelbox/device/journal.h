// The note of the operation that is under way on a device, for the next run in case this one is killed: which operation
// on which package, whether it is decided, and the cache files from before. What follows from it is package_area's
// business.
//
// The note is the directory "pending" of the device; it gets there and goes in one step each. It holds the file
// "begun", renamed "decided" later, with the operation and the package, and copies of the cache files.
#ifndef ORVEL_ORVELBOX_DEVICE_JOURNAL_H_
#define ORVEL_ORVELBOX_DEVICE_JOURNAL_H_

#include <filesystem>
#include <optional>
#include <string>

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
  explicit Journal(host::Device device);

  // Notes that the operation begins. Leaves nothing when it fails.
  void Begin(Operation operation, const std::string& package_id) const;
  // Notes that the operation is to be completed. Takes no disk space; without a note nothing is done.
  void Decide() const;
  // Gives the cache files their texts from the beginning; without a note nothing is done.
  void RestoreCaches() const;
  // Removes the note, and what is left of one that was never completed.
  void End() const;

  // What the note says; nothing when there is none. Throws also when it is damaged.
  std::optional<Pending> Read() const;

 private:
  std::filesystem::path Directory() const { return device_.directory / "pending"; }
  // Where the note is made, and taken apart.
  std::filesystem::path Temporary() const { return device_.directory / "pending.new"; }

  host::Device device_;
};

}  // namespace orvelbox

#endif
