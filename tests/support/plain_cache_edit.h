// The simplest way to erase entries from a cache text and to add them, as a reference for other implementations.
#ifndef TESTS_SUPPORT_PLAIN_CACHE_EDIT_H_
#define TESTS_SUPPORT_PLAIN_CACHE_EDIT_H_

#include <string>
#include <vector>

namespace support {

struct PlainEdit {
  std::string text;
  std::vector<std::string> erased;
  bool endless = false;    // the same empty entry would be found for ever; then nothing counts as erased
  bool went_back = false;  // an erasure created an entry that begins further to the front
};

// Erases the entries one by one. After every erasure the search starts again at the front.
PlainEdit PlainErase(const std::string& text, const std::string& root);

// Inserts the entries (":"-separated) before the end marker; the last five characters are taken as the end marker.
std::string PlainAppend(const std::string& text, const std::string& entries);

}  // namespace support

#endif
