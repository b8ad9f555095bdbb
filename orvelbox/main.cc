// orvelbox: runs the command line and returns the exit status.
#include <exception>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/all.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/trace/spans.h"

namespace {

int Run(const orvelbox::Request& request) {
  orvelbox::SetQuiet(request.global.quiet);
  if (!request.global.trace.empty()) orvelbox::RequireTraceable(request.global.trace);
  return request.command->run(request.global);
}

// Every exception, also one from parsing the command line, ends the program with a line for people.
int Run(int argc, char** argv) {
  try {
    const orvelbox::Commands commands = orvelbox::AllCommands();
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
  return orvelbox::kFailed;
}
