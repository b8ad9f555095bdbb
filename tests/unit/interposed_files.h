// More functions of the C library that this program defines itself: those about a file's owner, and the link to the
// running program. As long as nothing is set they do what the real ones do.
#ifndef TESTS_UNIT_INTERPOSED_FILES_H_
#define TESTS_UNIT_INTERPOSED_FILES_H_

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

namespace interposed {

struct Owner {
  uid_t user;
  gid_t group;
};

struct FileSettings {
  std::map<std::string, Owner> owners;     // stat of a path that is there reports this owner
  std::optional<int> owner_change_error;   // chown and lchown change nothing: 0 is success, else it fails with it
  std::optional<int> self_path_error;      // readlink of /proc/self/exe fails with this errno
  std::optional<std::string> self_target;  // readlink of /proc/self/exe gives this
};

// What is set now. chown and lchown appear in the doubles' journal as "chown(PATH, USER, GROUP)".
FileSettings& Files();

}  // namespace interposed

#endif
