// Erases and adds entries step by step, as defined.
#include "tests/support/plain_cache_edit.h"

namespace support {

namespace {

// The position of the first entry of `root`; npos when there is none.
std::size_t FindEntry(const std::string& text, const std::string& root) {
  std::size_t pos = text.find(root, 0);
  while (pos != std::string::npos) {
    if (pos > 0 && (text[pos - 1] == ':' || text[pos - 1] == ']')) return pos;
    pos = text.find(root, pos + 1);
  }
  return pos;
}

}  // namespace

PlainEdit PlainErase(const std::string& text, const std::string& root) {
  PlainEdit edit{text, {}};
  std::size_t last = 0;
  for (;;) {
    const std::size_t pos = FindEntry(edit.text, root);
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

std::string PlainAppend(const std::string& text, const std::string& entries) {
  const std::string kept = text.size() < 5 ? text : text.substr(0, text.size() - 5);
  return kept + ":" + entries + "[END]";
}

}  // namespace support
