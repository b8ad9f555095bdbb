// The escaped form of a log text: printable UTF-8 on one line, from which the text comes back byte by byte.
#ifndef ORVEL_PLATFORM_HOST_ESCAPE_H_
#define ORVEL_PLATFORM_HOST_ESCAPE_H_

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Escapes backslashes, control characters (those of a terminal's upper range too) and bytes that are no UTF-8.
std::string EscapeText(std::string_view text);
// As EscapeText, and spaces too.
std::string EscapeWord(std::string_view word);
// Undoes either. Nothing when `text` holds an escape that they do not write.
std::optional<std::string> UnescapeText(std::string_view text);

}  // namespace host

#endif
