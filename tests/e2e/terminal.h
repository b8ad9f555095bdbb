// A pseudo-terminal, to see the output of orvelbox on a terminal.
#ifndef ORVEL_TESTS_E2E_TERMINAL_H_
#define ORVEL_TESTS_E2E_TERMINAL_H_

#include <string>

#include "base/unique_fd.h"

namespace e2e {

class Terminal {
 public:
  Terminal();

  // False on a machine without pseudo-terminals.
  explicit operator bool() const { return static_cast<bool>(program_end_); }

  // Replaces the calling process's `descriptor` by the terminal.
  void PutAt(int descriptor) const;
  // The output up to and including `ending`; all output of about twenty seconds if `ending` does not come.
  std::string ReadUntil(const std::string& ending) const;

 private:
  UniqueFd reading_end_;
  UniqueFd program_end_;
};

}  // namespace e2e

#endif
