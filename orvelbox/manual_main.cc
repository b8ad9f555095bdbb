// Writes the manual page to standard output, during the build of orvelbox.
#include <iostream>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/all.h"
#include "orvelbox/manual/manual.h"

int main() {
  const orvelbox::Commands commands = orvelbox::AllCommands();
  orvelbox::GlobalOptions global;
  std::cout << orvelbox::ManPage(orvelbox::DescribeProgram(commands, global), ORVELBOX_VERSION) << std::flush;
  return std::cout ? 0 : 1;
}
