// Functions of the C library and of libxml2 that this program defines itself, so that tests can make them fail and see
// them called. As long as nothing is set they do what the real ones do, except that nothing is forced to disk.
#ifndef TESTS_SUPPORT_INTERPOSED_H_
#define TESTS_SUPPORT_INTERPOSED_H_

#include <optional>

namespace interposed {

struct Settings {
  bool entry_types_unknown = false;  // readdir64 reports no entry types, as some file systems do
  bool walker_fails = false;         // xmlReaderWalker gives null
  std::optional<int> nodes_to_read;  // xmlTextReaderRead fails, as on a parse error, after that many nodes
  std::optional<int> rename_error;   // rename fails with this errno and does nothing
};

// What is set now. fsync, rename and sync appear in the doubles' journal as "fsync(SIZE)" with the file's size at that
// moment, "rename(FROM, TO)" and "sync()", and reading by a walker that there is not as "xmlTextReaderRead(null)".
Settings& Now();

}  // namespace interposed

#endif
