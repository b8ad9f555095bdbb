// The buffer of FileBytes.
#include "orvelbox/desk/bytes.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace orvelbox {

std::string_view FileBytes::Read(std::uint64_t at, std::size_t length) {
  if (at < begin_ || at - begin_ > bytes_.size() || length > bytes_.size() - (at - begin_)) {
    const std::size_t wanted = std::max(window_, length);
    if (at > INT64_MAX - wanted) throw BeyondBytes();
    bytes_.resize(wanted);
    const ssize_t count = TEMP_FAILURE_RETRY(pread(file_, bytes_.data(), wanted, static_cast<off_t>(at)));
    if (count < 0) throw std::system_error(errno, std::generic_category());
    begin_ = at;
    bytes_.resize(static_cast<std::size_t>(count));
    if (length > bytes_.size()) throw BeyondBytes();
  }
  return {bytes_.data() + (at - begin_), length};
}

}  // namespace orvelbox
