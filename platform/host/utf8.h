// UTF-8 read character by character. What is shown, and how the rest is written instead, is decided elsewhere.
#ifndef ORVEL_PLATFORM_HOST_UTF8_H_
#define ORVEL_PLATFORM_HOST_UTF8_H_

#include <cstddef>
#include <optional>
#include <string_view>

namespace host {

struct Character {
  std::size_t size;  // in bytes
  char32_t code;
};

// The character that `text`, which is not empty, begins with. Nothing when it begins with no UTF-8: overlong forms,
// surrogates and what lies beyond U+10FFFF are none.
std::optional<Character> FirstCharacter(std::string_view text);

// Is it a control character: one of C0 or C1, or DEL?
constexpr bool IsControl(char32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

}  // namespace host

#endif
