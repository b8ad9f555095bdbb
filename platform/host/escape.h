// UTF-8 read character by character, and the escaped form of a log text: printable UTF-8 on one line, from which the
// text comes back byte by byte.
#ifndef ORVEL_PLATFORM_HOST_ESCAPE_H_
#define ORVEL_PLATFORM_HOST_ESCAPE_H_

#include <cstddef>
#include <optional>
#include <string>
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

// Escapes backslashes, control characters (those of a terminal's upper range too) and bytes that are no UTF-8.
std::string EscapeText(std::string_view text);
// As EscapeText, and spaces too.
std::string EscapeWord(std::string_view word);
// Undoes either. Nothing when `text` holds an escape that they do not write.
std::optional<std::string> UnescapeText(std::string_view text);

}  // namespace host

#endif
