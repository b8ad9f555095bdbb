// Reading UTF-8.
#include "platform/host/utf8.h"

namespace host {

std::optional<Character> FirstCharacter(std::string_view text) {
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return Character{1, lead};
  const std::size_t size = lead >= 0xF8 ? 0 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
  if (size == 0 || size > text.size()) return std::nullopt;
  char32_t code = lead & (0x7Fu >> size);
  for (std::size_t i = 1; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return std::nullopt;
    code = code << 6 | (byte & 0x3F);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kSmallest[size] || code > 0x10FFFF || surrogate) return std::nullopt;
  return Character{size, code};
}

}  // namespace host
