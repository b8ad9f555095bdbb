// The sessions in a document: its fenced "console" blocks, with the commands after "$ " and what they print. How
// commands are run is the test's.
//
// Of a command whose output is shown, every line is shown; "…" stands for anything within a line, and a line "…" for
// any lines. A command ends with status 0, or with N where its comment says "exit status N". What a session needs
// before it stands in comments that readers do not see: <!-- before: COMMAND -->.
#ifndef TESTS_DOCS_SESSIONS_H_
#define TESTS_DOCS_SESSIONS_H_

#include <cstddef>
#include <string>
#include <vector>

namespace docs {

struct Command {
  std::size_t line = 0;
  std::string text;
  int status = 0;
  bool shows_output = false;
  std::string output;
};

// The commands of all sessions in the text, in order. Throws std::runtime_error, naming the line, for a session that
// does not begin with a command, and for a fenced block that is neither a session nor named as something to read.
std::vector<Command> ReadSessions(const std::string& markdown);

// Whether `output` is what `shown` says.
bool Matches(const std::string& output, const std::string& shown);

}  // namespace docs

#endif
