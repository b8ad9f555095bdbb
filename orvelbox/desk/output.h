// The one place that prints to people: standard output for results, standard error for complaints. What is said is
// decided elsewhere.
#ifndef ORVEL_ORVELBOX_DESK_OUTPUT_H_
#define ORVEL_ORVELBOX_DESK_OUTPUT_H_

#include <string>
#include <string_view>

#include "orvelbox/desk/lines.h"

namespace orvelbox {

// `text` with every control character, every mark that turns a line around and every byte that is no UTF-8 escaped as
// in C ("\n", "\x1b"), so that no name can control a terminal or forge a line. A backslash stays as it is: the result
// cannot be read back.
std::string Printable(std::string_view text);

// Whether nothing but complaints is printed from here on.
void SetQuiet(bool quiet);

// Prints `line`, made printable, and a line feed on standard output.
void Say(std::string_view line);
void SayAll(const Lines& lines);
// What a command lists, in words or as JSON.
void SayListing(bool json, const std::string& as_json, const Lines& in_words);
// As Say, for a line that is safe already and may hold colour sequences.
void SayColoured(std::string_view safe_line);
// Prints "orvelbox: ", `line` made printable, and a line feed on standard error.
void Complain(std::string_view line);
// The same for what is no complaint: work that is being told of goes on.
void Remark(std::string_view line);

// Writes out what is still buffered. False when standard output did not take everything (a full disk, say).
bool FlushOutput();

// Whether standard output wants colour: a terminal, and `no_color` (the value of NO_COLOR, may be null) unset or empty.
bool ColourWanted(const char* no_color);

}  // namespace orvelbox

#endif
