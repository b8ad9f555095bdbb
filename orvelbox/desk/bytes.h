// Reads numbers and texts from untrusted bytes, piece by piece, with checked bounds. The callers know the formats.
#ifndef ORVEL_ORVELBOX_DESK_BYTES_H_
#define ORVEL_ORVELBOX_DESK_BYTES_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvelbox {

// A read beyond the end of the bytes.
class BeyondBytes : public std::runtime_error {
 public:
  BeyondBytes() : std::runtime_error("beyond the end of the bytes") {}
};

// Bytes that are read on demand.
class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Reads `length` bytes at `at`; valid until the next call. Throws BeyondBytes when there are fewer.
  virtual std::string_view Read(std::uint64_t at, std::size_t length) = 0;
};

// The bytes of an open file, which it does not own, with a buffer in memory.
class FileBytes : public ByteSource {
 public:
  // `window`: the minimum number of bytes per read.
  FileBytes(int file, std::size_t window) : file_(file), window_(window) {}
  // Throws std::system_error when the file cannot be read.
  std::string_view Read(std::uint64_t at, std::size_t length) override;

 private:
  int file_;
  std::size_t window_;
  std::uint64_t begin_ = 0;
  std::string bytes_;
};

// The little-endian number at `at`. `bytes` must be long enough.
inline std::uint64_t Number(std::string_view bytes, std::size_t at, unsigned count) {
  std::uint64_t number = 0;
  for (unsigned i = 0; i < count; ++i) {
    number |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at + i])) << (8 * i);
  }
  return number;
}

// A part of a source, which it does not own. Every function throws BeyondBytes.
class ByteView {
 public:
  ByteView(ByteSource& source, std::uint64_t size) : source_(&source), size_(size) {}

  std::uint8_t U8(std::uint64_t at) const { return static_cast<std::uint8_t>(NumberAt(at, 1)); }
  std::uint16_t U16(std::uint64_t at) const { return static_cast<std::uint16_t>(NumberAt(at, 2)); }
  std::uint32_t U32(std::uint64_t at) const { return static_cast<std::uint32_t>(NumberAt(at, 4)); }
  std::uint64_t U64(std::uint64_t at) const { return NumberAt(at, 8); }

  // The `length` bytes at `at`.
  ByteView Part(std::uint64_t at, std::uint64_t length) const {
    if (at > size_ || length > size_ - at) throw BeyondBytes();
    ByteView part = *this;
    part.begin_ += at;
    part.size_ = length;
    return part;
  }
  ByteView From(std::uint64_t at) const { return Part(at, at > size_ ? 0 : size_ - at); }

  bool BeginsWith(std::string_view text) const {
    return text.size() <= size_ && source_->Read(begin_, text.size()) == text;
  }
  // The text up to the first NUL, which must be among the first `most` bytes.
  std::string Text(std::uint64_t most) const {
    std::string text;
    const ByteView within = Part(0, std::min(most, size_));
    for (std::uint8_t byte = within.U8(0); byte != 0; byte = within.U8(text.size())) text += static_cast<char>(byte);
    return text;
  }

 private:
  std::uint64_t NumberAt(std::uint64_t at, unsigned count) const {
    if (at > size_ || count > size_ - at) throw BeyondBytes();
    return Number(source_->Read(begin_ + at, count), 0, count);
  }

  ByteSource* source_;
  std::uint64_t begin_ = 0;
  std::uint64_t size_;
};

}  // namespace orvelbox

#endif
