// Numbers out of bytes that are not to be trusted.
#ifndef ORVEL_ORVELBOX_ASSEMBLY_BYTE_VIEW_H_
#define ORVEL_ORVELBOX_ASSEMBLY_BYTE_VIEW_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace orvelbox {

// Something is asked for that lies beyond the bytes.
class BeyondBytes : public std::runtime_error {
 public:
  BeyondBytes() : std::runtime_error("beyond the end of the bytes") {}
};

// Borrowed bytes; numbers stand in them with the lowest byte first. Every function throws BeyondBytes.
class ByteView {
 public:
  explicit ByteView(std::string_view bytes) : bytes_(bytes) {}

  std::uint64_t size() const { return bytes_.size(); }
  std::uint8_t U8(std::uint64_t at) const { return static_cast<std::uint8_t>(Number(at, 1)); }
  std::uint16_t U16(std::uint64_t at) const { return static_cast<std::uint16_t>(Number(at, 2)); }
  std::uint32_t U32(std::uint64_t at) const { return static_cast<std::uint32_t>(Number(at, 4)); }
  std::uint64_t U64(std::uint64_t at) const { return Number(at, 8); }

  // The bytes from `at` on, `length` of them.
  ByteView Part(std::uint64_t at, std::uint64_t length) const {
    if (at > size() || length > size() - at) throw BeyondBytes();
    return ByteView(bytes_.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(length)));
  }
  ByteView From(std::uint64_t at) const { return Part(at, at > size() ? 0 : size() - at); }

  bool BeginsWith(std::string_view text) const { return bytes_.substr(0, text.size()) == text; }
  // The text up to the first NUL.
  std::string_view Text() const {
    const std::size_t end = bytes_.find('\0');
    if (end == std::string_view::npos) throw BeyondBytes();
    return bytes_.substr(0, end);
  }

 private:
  std::uint64_t Number(std::uint64_t at, unsigned count) const {
    const ByteView part = Part(at, count);
    std::uint64_t number = 0;
    for (unsigned i = 0; i < count; ++i) {
      number |= static_cast<std::uint64_t>(static_cast<unsigned char>(part.bytes_[i])) << (8 * i);
    }
    return number;
  }

  std::string_view bytes_;
};

}  // namespace orvelbox

#endif
