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
  return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

// Counts characters: continuation bytes of UTF-8 do not count.
std::size_t WidthOf(const std::string& cell) {
  const std::string shown = Printable(cell);
  return static_cast<std::size_t>(
      std::count_if(shown.begin(), shown.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

}  // namespace

std::string Printable(std::string_view text) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; })) return std::string(text);
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

Lines TableOf(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths(rows.front().size(), 0);
  for (std::size_t column = 0; column < widths.size(); ++column) {
    for (std::size_t row = 1; row < rows.size(); ++row) {
      widths[column] = std::max(widths[column], WidthOf(rows[row][column]));
    }
    if (widths[column] > 0) widths[column] = std::max(widths[column], WidthOf(rows.front()[column]));
  }
  Lines lines;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
      if (widths[column] == 0) continue;
      line += row[column] + std::string(widths[column] - WidthOf(row[column]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  }
  return lines;
}

void SetQuiet(bool wanted) { quiet = wanted; }

void Say(std::string_view line) { SayColoured(Printable(line)); }

void SayAll(const Lines& lines) {
  for (const std::string& line : lines) Say(line);
}

void SayListing(bool json, const std::string& as_json, const Lines& in_words) {
  if (json) return SayColoured(as_json);
  SayAll(in_words);
}

void SayColoured(std::string_view safe_line) {
  if (quiet) return;
  Activity::End();
  std::cout << safe_line << '\n';
}

void Complain(std::string_view line) {
  Activity::End();
  Remark(line);
}

void Remark(std::string_view line) {
  std::cout.flush();
  Activity::PutLineAbove("orvelbox: " + Printable(line));
}

bool FlushOutput() { return static_cast<bool>(std::cout.flush()); }

bool ColourWanted(const char* no_color) {
  const bool refused = no_color != nullptr && *no_color != '\0';
  return !refused && isatty(STDOUT_FILENO) == 1;
}

}  // namespace orvelbox
