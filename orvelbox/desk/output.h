// Text lines for people, and their output: results on standard output, messages on standard error. All output of
// orvelbox goes through here.
#ifndef ORVEL_ORVELBOX_DESK_OUTPUT_H_
#define ORVEL_ORVELBOX_DESK_OUTPUT_H_

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvelbox {

using Lines = std::vector<std::string>;

// `text` padded with spaces to `width`.
inline std::string Padded(std::string text, std::size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

// "1 entry", "2 entries".
inline std::string Counted(std::size_t number, const std::string& singular, const std::string& plural) {
  return std::to_string(number) + " " + (number == 1 ? singular : plural);
}

// The package's id, followed by the version if there is one.
inline std::string WithVersion(const std::string& id, const std::string& version) {
  return version.empty() ? id : id + " " + version;
}

// `text` with control characters, bidirectional control characters and bytes that are not UTF-8 escaped as in C ("\n",
// "\x1b"), so that no name can control a terminal or forge a line. Backslashes are not escaped, so the result cannot be
// parsed back.
std::string Printable(std::string_view text);

// Rows as lines with aligned columns, without blanks at their ends. A column without cells below its heading is left
// out. No row is kept, so that a long table takes no memory.
class TextTable {
 public:
  using Row = std::vector<std::string>;

  explicit TextTable(Row headings) : headings_(std::move(headings)), widths_(headings_.size(), 0) {}
  // Makes room for a row, which has as many cells as there are headings. All are to be measured before the first line.
  void Measure(const Row& row);
  std::string Headings() const { return Line(headings_); }
  std::string Line(const Row& row) const;

 private:
  Row headings_;
  std::vector<std::size_t> widths_;
};

// With `quiet`, only errors are printed from now on.
void SetQuiet(bool quiet);

// Takes lines that are still to be made printable.
using TakeLine = std::function<void(const std::string& line)>;
// Prints `line`, made printable, and a line feed on standard output.
void Say(std::string_view line);
void SayAll(const Lines& lines);
// Prints a listing, as text or as JSON.
void SayListing(bool json, const std::string& as_json, const Lines& in_words);
// Like Say, for a line that is already printable and may contain colour sequences.
void SayColoured(std::string_view safe_line);
// A part of such a line, without the line feed.
void SayPart(std::string_view safe_part);
// Prints "orvelbox: ", `line` made printable, and a line feed on standard error.
void Complain(std::string_view line);
// Like Complain, for a note that is not an error. A running Activity continues below it.
void Remark(std::string_view line);

// Prints `line`, made printable, on standard error: more about what was complained of.
void Elaborate(std::string_view line);

// Writes out what is still buffered. False when standard output did not take everything (a full disk, say).
bool FlushOutput();

// May standard output show colours? Only on a terminal with `no_color` (the value of NO_COLOR or null) unset or empty.
bool ColourWanted(const char* no_color);

}  // namespace orvelbox

#endif
