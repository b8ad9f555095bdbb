// Editing cache texts, compared with the simplest model. The first byte is the length of the root, the second the
// length of the appended entries; the rest is the text.
#include <string>

#include "fuzz/input.h"
#include "plugin/cache_files.h"
#include "tests/support/cache_edit.h"
#include "tests/support/plain_cache_edit.h"

namespace {

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += std::to_string(text.size()) + " " + text + "\n";
  return joined;
}

void CheckErasing(const std::string& text, const std::string& root) {
  const support::PlainEdit plain = support::PlainErase(text, root);
  const support::CacheEdit edit = support::Erase(text, root);
  fuzz::RequireEqual(plain.text, edit.text, "what is left is what the plain search leaves");
  fuzz::RequireEqual(Joined(plain.erased), Joined(edit.erased), "what is erased is what the plain search erases");
  if (plain.endless) return;
  fuzz::Require(support::Erase(edit.text, root).erased.empty(), "a second erasing finds nothing");
}

void CheckAppending(const std::string& text, const std::string& entries) {
  fuzz::RequireEqual(support::PlainAppend(text, entries), AppendEntries(text, entries), "entries go before the marker");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::size_t root_size = input.Below(16);
  const std::size_t entries_size = input.Below(16);
  const std::string root = input.Text(root_size);
  const std::string entries = input.Text(entries_size);
  const std::string text = input.Rest();
  CheckErasing(text, root);
  CheckErasing("[START]" + text + "[END]", root);
  CheckAppending(text, entries);
  return 0;
}
