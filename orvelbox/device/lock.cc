// The lock of a device.
#include "orvelbox/device/lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "platform/host/files.h"

namespace orvelbox {
namespace {

UniqueFd OpenLockFile(const host::Device& device) {
  UniqueFd file(open(device.LockFile().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
  if (!file) host::ThrowFileError(device.LockFile(), "open", errno);
  return file;
}

// What the lock file says about its holder, as " (process N)"; empty when it says nothing sensible.
std::string Holder(int descriptor) {
  std::array<char, 24> text{};
  const ssize_t length = pread(descriptor, text.data(), text.size() - 1, 0);
  const std::string digits(text.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) return "";
  return " (process " + digits + ")";
}

// A full disk keeps the name of the holder away, but not the lock.
void NameHolder(int descriptor) {
  const std::string digits = std::to_string(getpid());
  if (ftruncate(descriptor, 0) != 0) return;
  [[maybe_unused]] const ssize_t written = pwrite(descriptor, digits.data(), digits.size(), 0);
}

}  // namespace

DeviceLock::DeviceLock(const host::Device& device) : file_(OpenLockFile(device)) {
  if (flock(file_.get(), LOCK_EX | LOCK_NB) == 0) {
    NameHolder(file_.get());
    return;
  }
  if (errno != EWOULDBLOCK) host::ThrowFileError(device.LockFile(), "lock", errno);
  throw host::DeviceError(device.directory.string() + ": in use by another orvelbox" + Holder(file_.get()) +
                          "; wait for it, or use another device with --device");
}

}  // namespace orvelbox
