// Helpers for fuzz targets: splitting an input, and stopping at a failed check.
#ifndef FUZZ_INPUT_H_
#define FUZZ_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

// The bytes of one input, read from the front. Reads beyond the end return zero or an empty text.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(reinterpret_cast<const char*>(data)), size_(size) {}

  bool empty() const { return at_ == size_; }
  std::size_t Byte() { return empty() ? 0 : static_cast<unsigned char>(data_[at_++]); }
  std::size_t Below(std::size_t count) { return Byte() % count; }
  // At most `size` bytes.
  std::string Text(std::size_t size) {
    const std::string text(data_ + at_, size < size_ - at_ ? size : size_ - at_);
    at_ += text.size();
    return text;
  }
  std::string Rest() { return Text(size_); }

 private:
  const char* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

// Ends the process and prints `promise` unless `holds`.
void Require(bool holds, const char* promise);

// The same, and also prints the expected and the actual text.
void RequireEqual(const std::string& expected, const std::string& actual, const char* promise);

}  // namespace fuzz

// The target, which each fuzzer defines. libFuzzer and the test of the kept inputs call it. Always returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif
