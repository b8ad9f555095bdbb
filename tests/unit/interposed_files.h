// More functions of the C library that this program defines itself: those that ask about a file or change its owner,
// the link to the running program, open, read and write. As long as nothing is set they do what the real ones do,
// except that no owner is ever changed.
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

// What one call of write does: it fails with `error`, or writes no more than `most` bytes.
struct WriteStep {
  int error;
  std::size_t most;
};
inline WriteStep Fails(int error) { return {error, 0}; }
inline WriteStep WritesAtMost(std::size_t most) { return {0, most}; }

struct FileSettings {
  std::map<std::string, Owner> owners;     // stat of a path that is there reports this owner
  std::map<std::string, int> look_errors;  // lstat of the path fails with this errno
  int owner_change_error = 0;              // chown and lchown change nothing: 0 is success, else they fail with it
  std::optional<int> self_path_error;      // readlink of /proc/self/exe fails with this errno
  std::optional<std::string> self_target;  // readlink of /proc/self/exe gives this
  std::deque<WriteStep> writes;            // the next calls of write; those after them are ordinary ones again
  std::deque<int> open_errors;             // the next calls of open fail with these; 0: an ordinary one
  std::deque<int> read_errors;             // the next calls of read, likewise
  int common_open_flags = ~0;              // left here by open: the flags of all calls since this was set
  std::vector<std::string> examined;       // left here by stat and stat64: the paths
};

// What is set now. A negative descriptor given to write or fstat is among the doubles' misuses. chown and lchown appear
// in the doubles' journal as "chown(PATH, USER, GROUP)".
FileSettings& Files();

}  // namespace interposed

#endif
