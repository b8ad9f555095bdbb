// Runs shell commands.
#include "tests/support/command.h"

#include <cstdio>
#include <stdexcept>

namespace support {

std::string OutputOf(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  char buffer[4096];
  while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) output.append(buffer, count);
  const int status = pclose(pipe);
  return status == 0 ? output : output + "(ended with " + std::to_string(status) + ")\n";
}

std::string Quoted(const std::string& text) {
  std::string word = "'";
  for (const char letter : text) word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  return word + "'";
}

}  // namespace support
