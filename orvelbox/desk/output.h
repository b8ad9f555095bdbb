// Text lines for people, and their output: results on standard output, messages on standard error. All output of
// orvelbox goes through here.
#ifndef ORVEL_ORVELBOX_DESK_OUTPUT_H_
#define ORVEL_ORVELBOX_DESK_OUTPUT_H_

#include <cstddef>
#include <string>
#include <string_view>
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

// The rows as lines with aligned columns, without trailing spaces. The first row holds the headings; all rows have the
// same number of cells. A column whose cells below the heading are all empty is omitted.
Lines TableOf(const std::vector<std::vector<std::string>>& rows);

// With `quiet`, only errors are printed from now on.
void SetQuiet(bool quiet);

// Prints Printable(`line`) and a line feed on standard output.
void Say(std::string_view line);
void SayAll(const Lines& lines);
// Prints a listing, as text or as JSON.
void SayListing(bool json, const std::string& as_json, const Lines& in_words);
// Like Say, for a line that is already printable and may contain colour sequences.
void SayColoured(std::string_view safe_line);
// Prints "orvelbox: ", Printable(`line`) and a line feed on standard error.
void Complain(std::string_view line);
// Like Complain, for a note that is not an error. A running Activity continues below it.
void Remark(std::string_view line);

// Flushes standard output. Returns false when it did not accept everything (a full disk, for example).
bool FlushOutput();

// May standard output show colours? Only on a terminal with `no_color` (the value of NO_COLOR or null) unset or empty.
bool ColourWanted(const char* no_color);

}  // namespace orvelbox

#endif
