// What may stand at the end of a command line that is still being typed, which the shells' completions ask for.
#ifndef ORVEL_ORVELBOX_CLI_COMPLETION_H_
#define ORVEL_ORVELBOX_CLI_COMPLETION_H_

#include <string>
#include <string_view>
#include <vector>

#include "orvelbox/cli/command_line.h"

namespace orvelbox {

// The words of a shell's command line, unquoted. The last one is what is being typed, empty after a blank.
std::vector<std::string> ShellWords(std::string_view line);

struct Offer {
  Candidates candidates;
  bool files = false;  // names of files will do, too
};

// What may become of the last of `words`, which follow the program's name. `program` is described for `global`, where
// the values go that the words before it name.
Offer OfferFor(const CommandFacts& program, const GlobalOptions& global, const std::vector<std::string>& words);

// Prints what may become of the last word of `line`, the command line up to the cursor with the program's name: a line
// for each candidate, with a tab and a word about it if there is one; "/" for names of files. `kept` is as much of the
// line as the shell keeps: what stands there of the word is left out of the candidates. Prints nothing at all when the
// answer takes too long.
void Complete(const Commands& commands, std::string_view line, std::string_view kept);

}  // namespace orvelbox

#endif
