// Erasing, step by step as it is told.
#include "tests/support/plain_cache_edit.h"

namespace support {

std::size_t PlainFind(const std::string& text, const std::string& root) {
  std::size_t pos = text.find(root, 0);
  while (pos != std::string::npos) {
    if (pos > 0 && (text[pos - 1] == ':' || text[pos - 1] == ']')) return pos;
    pos = text.find(root, pos + 1);
  }
  return pos;
}

PlainEdit PlainErase(const std::string& text, const std::string& root) {
  PlainEdit edit{text, {}};
  std::size_t last = 0;
  for (;;) {
    const std::size_t pos = PlainFind(edit.text, root);
    if (pos == std::string::npos) return edit;
    if (pos < last) edit.went_back = true;
    std::size_t begin = pos;
    std::size_t end = edit.text.find(':', pos);
    if (end != std::string::npos) {
      ++end;
    } else {
      end = edit.text.find('[', pos);
      if (end == std::string::npos) end = edit.text.size();
      if (edit.text[pos - 1] == ':') --begin;
    }
    if (begin == end) return {text, {}, true};
    edit.erased.push_back(edit.text.substr(begin, end - begin));
    edit.text.erase(begin, end - begin);
    last = begin;
  }
}

}  // namespace support
