// The window of a file.
#include "orvelbox/desk/bytes.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/host/device_error.h"
#include "platform/host/files.h"

namespace orvelbox {

std::string_view FileBytes::Read(std::uint64_t at, std::size_t length) {
  if (at < begin_ || at - begin_ > bytes_.size() || length > bytes_.size() - (at - begin_)) {
    bytes_.resize(std::max(window_, length));
    const ssize_t count =
        at > INT64_MAX ? 0 : TEMP_FAILURE_RETRY(pread(file_, bytes_.data(), bytes_.size(), static_cast<off_t>(at)));
    if (count < 0) throw host::DeviceError("cannot be read: " + host::ErrorText(errno));
    begin_ = at;
    bytes_.resize(static_cast<std::size_t>(count));
    if (length > bytes_.size()) throw BeyondBytes();
  }
  return {bytes_.data() + (at - begin_), length};
}

}  // namespace orvelbox
