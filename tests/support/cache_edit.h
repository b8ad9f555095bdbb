// Edits cache texts and collects the erased spans, for comparisons.
#ifndef TESTS_SUPPORT_CACHE_EDIT_H_
#define TESTS_SUPPORT_CACHE_EDIT_H_

#include <string>
#include <vector>

#include "plugin/cache_files.h"

namespace support {

struct CacheEdit {
  std::string text;
  std::vector<std::string> erased;
};

inline CacheEdit Erase(const std::string& text, const std::string& root) {
  CacheEdit edit;
  edit.text = EraseEntries(text, root, [&edit](const std::string& span) { edit.erased.push_back(span); });
  return edit;
}

}  // namespace support

#endif
