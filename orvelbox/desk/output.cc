// Printing, and the escaping of what is printed.
#include "orvelbox/desk/output.h"

#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>

#include "orvelbox/desk/progress.h"

namespace orvelbox {
namespace {

bool quiet = false;

std::string Escaped(unsigned char byte) {
  switch (byte) {
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default: {
      std::array<char, 5> text{};
      std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned>(byte));
      return text.data();
    }
  }
}

// The number of bytes that a UTF-8 sequence beginning with `lead` has; 0 when no sequence begins with it.
std::size_t SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xc2 && lead < 0xe0) return 2;
  if (lead >= 0xe0 && lead < 0xf0) return 3;
  if (lead >= 0xf0 && lead < 0xf5) return 4;
  return 0;
}

// The length of the character that `text` begins with; 0 when it begins with no whole UTF-8 character.
std::size_t CharacterLength(std::string_view text) {
  const std::size_t length = SequenceLength(static_cast<unsigned char>(text.front()));
  if (length == 0 || length > text.size()) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xc0) != 0x80) return 0;
  }
  return length;
}

unsigned ByteAt(std::string_view text, std::size_t index) { return static_cast<unsigned char>(text[index]); }

// U+202A to U+202E and U+2066 to U+2069.
bool TurnsLineAround(std::string_view character) {
  if (character.size() != 3 || ByteAt(character, 0) != 0xe2) return false;
  const unsigned last = ByteAt(character, 2);
  if (ByteAt(character, 1) == 0x80) return last >= 0xaa && last <= 0xae;
  return ByteAt(character, 1) == 0x81 && last >= 0xa6 && last <= 0xa9;
}

// C0, DEL, C1, and the marks that turn the direction of a line around.
bool IsControl(std::string_view character) {
  const unsigned first = ByteAt(character, 0);
  if (character.size() == 1) return first < 0x20 || first == 0x7f;
  if (character.size() == 2) return first == 0xc2 && ByteAt(character, 1) < 0xa0;
  return TurnsLineAround(character);
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const std::string_view character = text.substr(0, length == 0 ? 1 : length);
    if (length != 0 && !IsControl(character)) {
      printable += character;
    } else {
      for (const char byte : character) printable += Escaped(static_cast<unsigned char>(byte));
    }
    text.remove_prefix(character.size());
  }
  return printable;
}

void SetQuiet(bool wanted) { quiet = wanted; }

void Say(std::string_view line) { SayColoured(Printable(line)); }

void SayAll(const Lines& lines) {
  for (const std::string& line : lines) Say(line);
}

void SayColoured(std::string_view safe_line) {
  if (quiet) return;
  Activity::End();
  std::cout << safe_line << '\n';
}

void Complain(std::string_view line) {
  Activity::End();
  std::cout.flush();
  std::cerr << "orvelbox: " + Printable(line) + "\n";
}

bool FlushOutput() { return static_cast<bool>(std::cout.flush()); }

bool ColourWanted(const char* no_color) {
  const bool refused = no_color != nullptr && *no_color != '\0';
  return !refused && isatty(STDOUT_FILENO) == 1;
}

}  // namespace orvelbox
