// orvelbox: from the command line to the exit status.
#include <exception>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/commands.h"
#include "orvelbox/desk/output.h"

namespace {

int Run(const orvelbox::Options& options) {
  try {
    return orvelbox::RunCommand(options);
  } catch (const std::exception& error) {
    orvelbox::Complain(error.what());
    return orvelbox::kFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const auto parsed = orvelbox::ParseCommandLine(argc, argv);
  if (const int* status = std::get_if<int>(&parsed)) return *status;
  const int status = Run(std::get<orvelbox::Options>(parsed));
  if (orvelbox::FlushOutput()) return status;
  orvelbox::Complain("standard output cannot be written");
  return orvelbox::kFailed;
}
