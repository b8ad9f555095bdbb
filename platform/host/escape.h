// Reading UTF-8 by character, and escaping log texts: the escaped form is one line of printable UTF-8 that unescapes to
// the same bytes.
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

// The first character of `text`, which is not empty. Nothing when it is not valid UTF-8; overlong forms, surrogates and
// values above U+10FFFF are invalid.
std::optional<Character> FirstCharacter(std::string_view text);

// Is it a control character (C0, C1 or DEL)?
constexpr bool IsControl(char32_t code) { return code < 0x20 || (code >= 0x7F && code < 0xA0); }

// Escapes backslashes, control characters (C0, C1, DEL) and bytes that are not UTF-8.
std::string EscapeText(std::string_view text);
// Like EscapeText, and escapes spaces too.
std::string EscapeWord(std::string_view word);
// The inverse of both. Nothing when `text` has an escape that they do not write.
std::optional<std::string> UnescapeText(std::string_view text);

}  // namespace host

#endif
