// The released functions of libquarnel_util.so.
#include "quarnel_util/quarnel_util.h"
#include "tests/abi/prototypes.h"

using Text = std::string;

namespace abi_guard {

void MentionQuarnelUtil() {
  Mention<Text(const Text&)>(getRootPath);
  Mention<Text(const Text&, const Text&)>(concatPath);
  Mention<Text(const Text&)>(getAbsolutePath);
  Mention<void(const Text&, std::vector<Text>&)>(splitPath);
  Mention<bool(const boost::filesystem::path&)>(removeFile);
  Mention<void(const std::vector<Text>&, Text&)>(addAssembliesFromDirectories);
}

}  // namespace abi_guard
