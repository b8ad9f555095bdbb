// Functions of the C library and of libxml2 that this program defines itself, so that tests can make them fail and
// observe their calls. Without settings they act like the real ones, except that nothing is forced to disk.
#ifndef TESTS_SUPPORT_INTERPOSED_H_
#define TESTS_SUPPORT_INTERPOSED_H_

#include <optional>

namespace interposed {

struct Settings {
  bool entry_types_unknown = false;  // readdir64 reports no entry types, as some file systems do
  bool walker_fails = false;         // xmlReaderWalker returns null
  std::optional<int> nodes_to_read;  // xmlTextReaderRead fails, as on a parse error, after that many nodes
  std::optional<int> rename_error;   // rename fails with this errno and does nothing
};

// The current settings. The doubles' journal records fsync, rename and sync as "fsync(SIZE)" with the file's current
// size, "rename(FROM, TO)" and "sync()", and a read by a null walker as "xmlTextReaderRead(null)".
Settings& Now();

}  // namespace interposed

#endif
