// The plainest form of erasing entries from a cache text and of adding them, to hold any other form against.
#ifndef TESTS_SUPPORT_PLAIN_CACHE_EDIT_H_
#define TESTS_SUPPORT_PLAIN_CACHE_EDIT_H_

#include <string>
#include <vector>

namespace support {

struct PlainEdit {
  std::string text;
  std::vector<std::string> erased;
  bool endless = false;    // the same empty place would be found for ever; nothing counts as erased then
  bool went_back = false;  // an erasure made an entry that begins further at the front
};

// Erases them one by one. After every erasure the search starts again at the front.
PlainEdit PlainErase(const std::string& text, const std::string& root);

// Puts the entries (":"-separated) before the end marker, in whose place, the last five characters, anything may stand.
std::string PlainAppend(const std::string& text, const std::string& entries);

}  // namespace support

#endif
