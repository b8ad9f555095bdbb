// Printing, and escaping what is printed.
#include "orvelbox/desk/output.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>

#include "orvelbox/desk/progress.h"
#include "platform/host/escape.h"

namespace orvelbox {
namespace {

bool quiet = false;

std::string Escaped(char byte) {
  constexpr std::string_view kMeanings = "\n\r\t";
  const std::size_t letter = kMeanings.find(byte);
  if (letter != std::string_view::npos) return {'\\', "nrt"[letter]};
  std::array<char, 5> text{};
  std::snprintf(text.data(), text.size(), "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
  return text.data();
}

// Is it a bidirectional control character, which can reorder a line?
constexpr bool IsBidirectionalControl(char32_t code) {
  return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069) || code == 0x200E || code == 0x200F ||
         code == 0x061C;
}

bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// Characters, not bytes: those that continue one of UTF-8 do not count.
std::size_t WidthOf(const std::string& cell) {
  if (IsPlain(cell)) return cell.size();
  const std::string shown = Printable(cell);
  return static_cast<std::size_t>(
      std::count_if(shown.begin(), shown.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

}  // namespace

std::string Printable(std::string_view text) {
  if (IsPlain(text)) return std::string(text);
  std::string printable;
  printable.reserve(text.size());
  while (!text.empty()) {
    const auto character = host::FirstCharacter(text);
    const std::string_view bytes = text.substr(0, character ? character->size : 1);
    if (character && !host::IsControl(character->code) && !IsBidirectionalControl(character->code)) {
      printable += bytes;
    } else {
      for (const char byte : bytes) printable += Escaped(byte);
    }
    text.remove_prefix(bytes.size());
  }
  return printable;
}

void TextTable::Measure(const Row& row) {
  for (std::size_t column = 0; column < row.size(); ++column) {
    const std::size_t width = WidthOf(row[column]);
    if (width > 0) widths_[column] = std::max({widths_[column], width, WidthOf(headings_[column])});
  }
}

std::string TextTable::Line(const Row& row) const {
  std::string line;
  for (std::size_t column = 0; column < row.size(); ++column) {
    if (widths_[column] == 0) continue;
    line.append(row[column]).append(widths_[column] - WidthOf(row[column]) + 2, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line;
}

void SetQuiet(bool wanted) { quiet = wanted; }

void Say(std::string_view line) {
  if (IsPlain(line)) return SayColoured(line);
  SayColoured(Printable(line));
}

void SayAll(const Lines& lines) {
  for (const std::string& line : lines) Say(line);
}

void SayListing(bool json, const std::string& as_json, const Lines& in_words) {
  if (json) return SayColoured(as_json);
  SayAll(in_words);
}

void SayColoured(std::string_view safe_line) {
  SayPart(safe_line);
  SayPart("\n");
}

void SayPart(std::string_view safe_part) {
  if (quiet) return;
  Activity::End();
  std::cout << safe_part;
}

void Complain(std::string_view line) {
  Activity::End();
  Remark(line);
}

void Remark(std::string_view line) { Elaborate("orvelbox: " + std::string(line)); }

void Elaborate(std::string_view line) {
  std::cout.flush();
  Activity::PutLineAbove(Printable(line));
}

bool FlushOutput() { return static_cast<bool>(std::cout.flush()); }

bool ColourWanted(const char* no_color) {
  const bool refused = no_color != nullptr && *no_color != '\0';
  return !refused && isatty(STDOUT_FILENO) == 1;
}

}  // namespace orvelbox
