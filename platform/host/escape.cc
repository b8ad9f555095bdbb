// Reading UTF-8 and escaping log texts.
#include "platform/host/escape.h"

#include <algorithm>
#include <boost/locale/utf.hpp>

namespace host {
namespace {

struct Escape {
  char letter;
  char meaning;
};
constexpr Escape kEscapes[] = {{'\\', '\\'}, {'a', '\a'}, {'b', '\b'}, {'t', '\t'},  {'n', '\n'},
                               {'v', '\v'},  {'f', '\f'}, {'r', '\r'}, {'e', '\x1b'}};
constexpr std::string_view kHexDigits = "0123456789abcdef";

void AppendEscaped(char byte, std::string* out) {
  const auto* escape =
      std::find_if(std::begin(kEscapes), std::end(kEscapes), [&](const Escape& e) { return e.meaning == byte; });
  *out += '\\';
  if (escape != std::end(kEscapes)) {
    *out += escape->letter;
    return;
  }
  const auto value = static_cast<unsigned char>(byte);
  *out += {'x', kHexDigits[value >> 4], kHexDigits[value & 15]};
}

// The number of bytes of the printable character at the front of `text`; 0 when there is none.
size_t PrintableLength(std::string_view text) {
  const auto character = FirstCharacter(text);
  return character && !IsControl(character->code) ? character->size : 0;
}

std::string EscapeAll(std::string_view text, std::string_view also) {
  std::string out;
  while (!text.empty()) {
    const size_t length = also.find(text[0]) != std::string_view::npos ? 0 : PrintableLength(text);
    if (length == 0) AppendEscaped(text[0], &out);
    out += text.substr(0, length);
    text.remove_prefix(std::max<size_t>(length, 1));
  }
  return out;
}

// Removes the escape at the front of `text` (after its backslash) and returns its character.
std::optional<char> ReadEscape(std::string_view& text) {
  if (text.empty()) return std::nullopt;
  const char letter = text[0];
  text.remove_prefix(1);
  for (const auto& escape : kEscapes) {
    if (escape.letter == letter) return escape.meaning;
  }
  if (letter != 'x' || text.size() < 2) return std::nullopt;
  const size_t high = kHexDigits.find(text[0]);
  const size_t low = kHexDigits.find(text[1]);
  if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
  text.remove_prefix(2);
  return static_cast<char>(high << 4 | low);
}

}  // namespace

std::optional<Character> FirstCharacter(std::string_view text) {
  using Utf8 = boost::locale::utf::utf_traits<char>;
  const char* end = text.data();
  const auto code = Utf8::decode(end, text.data() + text.size());
  if (code == boost::locale::utf::illegal || code == boost::locale::utf::incomplete) return std::nullopt;
  return Character{static_cast<std::size_t>(end - text.data()), code};
}

std::string EscapeText(std::string_view text) { return EscapeAll(text, "\\"); }

std::string EscapeWord(std::string_view word) { return EscapeAll(word, "\\ "); }

std::optional<std::string> UnescapeText(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const size_t plain = std::min(text.find('\\'), text.size());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    text.remove_prefix(1);
    const auto byte = ReadEscape(text);
    if (!byte) return std::nullopt;
    out += *byte;
  }
  return out;
}

}  // namespace host
