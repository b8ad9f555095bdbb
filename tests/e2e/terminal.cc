// A pseudo-terminal of the system.
#include "tests/e2e/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTimeout{20};

int MillisecondsUntil(Clock::time_point end) {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
  return std::max(0, static_cast<int>(left.count()));
}

UniqueFd OpenProgramEnd(int reading_end) {
  if (grantpt(reading_end) != 0 || unlockpt(reading_end) != 0) return UniqueFd();
  return UniqueFd(open(ptsname(reading_end), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

bool EndsWith(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

Terminal::Terminal()
    : reading_end_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)), program_end_(OpenProgramEnd(reading_end_.get())) {}

void Terminal::PutAt(int descriptor) const { dup2(program_end_.get(), descriptor); }

std::string Terminal::ReadUntil(const std::string& ending) const {
  const Clock::time_point end = Clock::now() + kTimeout;
  std::string text;
  std::array<char, 1> byte{};
  pollfd waiting{reading_end_.get(), POLLIN, 0};
  while (!EndsWith(text, ending) && poll(&waiting, 1, MillisecondsUntil(end)) == 1 &&
         read(reading_end_.get(), byte.data(), byte.size()) == 1) {
    text += byte[0];
  }
  return text;
}

}  // namespace e2e
