// A pseudo-terminal, to see what orvelbox prints on one.
#ifndef ORVEL_TESTS_E2E_TERMINAL_H_
#define ORVEL_TESTS_E2E_TERMINAL_H_

#include <string>

#include "base/unique_fd.h"

namespace e2e {

class Terminal {
 public:
  Terminal();

  // False where the machine has none.
  explicit operator bool() const { return static_cast<bool>(program_end_); }

  // Puts the terminal in the place of the calling process's `descriptor`.
  void PutAt(int descriptor) const;
  // What was printed, up to and with `ending`; all that came within some twenty seconds when that does not come.
  std::string ReadUntil(const std::string& ending) const;

 private:
  UniqueFd reading_end_;
  UniqueFd program_end_;
};

}  // namespace e2e

#endif
