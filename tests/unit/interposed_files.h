// More functions of the C library that this program defines itself: stat and similar ones, chown, readlink of the
// running program, open, read and write. Without settings they act like the real ones, except that no owner is ever
// changed.
#ifndef TESTS_UNIT_INTERPOSED_FILES_H_
#define TESTS_UNIT_INTERPOSED_FILES_H_

#include <sys/types.h>

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace interposed {

struct Owner {
  uid_t user;
  gid_t group;
};

// One call of write: it fails with `error`, or writes no more than `most` bytes.
struct WriteStep {
  int error;
  std::size_t most;
};
inline WriteStep Fails(int error) { return {error, 0}; }
inline WriteStep WritesAtMost(std::size_t most) { return {0, most}; }

struct FileSettings {
  std::map<std::string, Owner> owners;     // stat of an existing path reports this owner
  std::map<std::string, int> look_errors;  // lstat of the path fails with this errno
  int owner_change_error = 0;              // chown and lchown change nothing; 0: success, else they fail with it
  std::optional<int> self_path_error;      // readlink of /proc/self/exe fails with this errno
  std::optional<std::string> self_target;  // readlink of /proc/self/exe returns this
  std::deque<WriteStep> writes;            // the next calls of write; later ones are ordinary
  std::deque<int> open_errors;             // the next calls of open fail with these; 0: an ordinary call
  std::deque<int> read_errors;             // the next calls of read, likewise
  int common_open_flags = ~0;              // set by open: the flags that all calls have in common
  std::vector<std::string> examined;       // set by stat and stat64: the paths
};

// The current settings. A negative descriptor given to write or fstat is recorded as a misuse by the doubles. Their
// journal records chown and lchown as "chown(PATH, USER, GROUP)".
FileSettings& Files();

}  // namespace interposed

#endif
