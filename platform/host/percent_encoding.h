// Percent encoding for URIs and project files.
#ifndef ORVEL_PLATFORM_HOST_PERCENT_ENCODING_H_
#define ORVEL_PLATFORM_HOST_PERCENT_ENCODING_H_

#include <string>
#include <string_view>

namespace host {

// `text` with "%" and two hexadecimal digits in place of every byte that is not `plain`.
template <typename IsPlain>
std::string PercentEncoded(const std::string& text, const IsPlain& plain) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (plain(c)) {
      encoded += c;
    } else {
      encoded.append("%").append(1, kDigits[byte >> 4U]).append(1, kDigits[byte & 15U]);
    }
  }
  return encoded;
}

}  // namespace host

#endif
