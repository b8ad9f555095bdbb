// orvelbox: from the command line to the exit status.
#include <exception>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/commands.h"
#include "orvelbox/desk/output.h"

namespace {

// No exception ends the program without a line for people, be it one of the command line's own making.
int Run(int argc, char** argv) {
  try {
    const auto parsed = orvelbox::ParseCommandLine(argc, argv);
    if (const int* status = std::get_if<int>(&parsed)) return *status;
    return orvelbox::RunCommand(std::get<orvelbox::Options>(parsed));
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
