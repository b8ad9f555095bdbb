// The sessions in a document: its fenced "console" blocks, with the commands after "$ " and their output. sessions_test
// runs the commands.
//
// If the output of a command is shown, it is complete; "…" stands for any text within a line, and a line "…" for any
// lines. A command ends with status 0, or with N if its comment says "exit status N". Hidden comments prepare a
// session: <!-- before: COMMAND -->.
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

// The commands of all sessions in the text, in order. Throws a std::runtime_error with the line for a session that does
// not begin with a command, and for a fenced block that is neither a session nor in a language without commands.
std::vector<Command> ReadSessions(const std::string& markdown);

// Does `output` match `shown`?
bool Matches(const std::string& output, const std::string& shown);

}  // namespace docs

#endif
