// Writes the manual page and the completions to the directory given as argument, during the build of orvelbox.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "orvelbox/cli/command_line.h"
#include "orvelbox/commands/all.h"
#include "orvelbox/manual/manual.h"

namespace {

bool Write(const std::filesystem::path& file, const std::string& text) {
  std::ofstream stream(file);
  if (stream << text << std::flush) return true;
  std::cerr << file.string() << ": cannot be written\n";
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: orvelbox_manual DIRECTORY\n";
    return 2;
  }
  const std::filesystem::path directory = argv[1];
  const orvelbox::Commands commands = orvelbox::AllCommands();
  orvelbox::GlobalOptions global;
  const orvelbox::CommandFacts program = orvelbox::DescribeProgram(commands, global);
  const bool written = Write(directory / "orvelbox.1", orvelbox::ManPage(program, ORVELBOX_VERSION)) &&
                       Write(directory / "orvelbox.bash", orvelbox::BashCompletion(program)) &&
                       Write(directory / "_orvelbox", orvelbox::ZshCompletion(program)) &&
                       Write(directory / "orvelbox.fish", orvelbox::FishCompletion(program));
  return written ? 0 : 1;
}
