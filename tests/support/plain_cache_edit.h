// The plainest form of erasing entries from a cache text, to hold any other form against.
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

// Where the first entry of `root` begins; npos when there is none.
std::size_t PlainFind(const std::string& text, const std::string& root);

// Erases them one by one. After every erasure the search starts again at the front.
PlainEdit PlainErase(const std::string& text, const std::string& root);

}  // namespace support

#endif
