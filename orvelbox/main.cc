// orvelbox: runs the command line and returns the exit status.
#include <algorithm>
#include <exception>
#include <string_view>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/cli/completion.h"
#include "orvelbox/commands/all.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/trace/spans.h"

namespace {

int Run(const orvelbox::Request& request) {
  orvelbox::SetQuiet(request.global.quiet);
  if (!request.global.trace.empty()) orvelbox::RequireTraceable(request.global.trace);
  return request.command->run(request.global);
}

// By a shell's completion, and nobody else.
bool IsAskedToComplete(int argc, char** argv) { return argc > 2 && std::string_view(argv[1]) == "__complete"; }

// No exception ends the program without a line for people, be it one of the command line's own making.
int Run(int argc, char** argv) {
  try {
    const orvelbox::Commands commands = orvelbox::AllCommands();
    if (IsAskedToComplete(argc, argv)) {
      orvelbox::Complete(commands, argv[2], argc > 3 ? argv[3] : "");
      return orvelbox::kDone;
    }
    const auto parsed = orvelbox::ParseCommandLine(commands, argc, argv);
    if (const int* status = std::get_if<int>(&parsed)) return *status;
    return Run(std::get<orvelbox::Request>(parsed));
  } catch (const std::exception& error) {
    orvelbox::Complain(error.what());
    return orvelbox::kFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int status = Run(argc, argv);
  if (orvelbox::FlushOutput()) return status;
  orvelbox::Complain("standard output cannot be written");
  return std::max(status, orvelbox::kFailed);
}
