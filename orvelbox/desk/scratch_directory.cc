// The temporary directory.
#include "orvelbox/desk/scratch_directory.h"

#include <stdlib.h>

#include <cerrno>
#include <string>

#include "platform/host/files.h"

namespace fs = std::filesystem;

namespace orvelbox {

ScratchDirectory::ScratchDirectory() {
  std::error_code ignored;
  const fs::path temporary = fs::temp_directory_path(ignored);
  std::string name = ((ignored ? fs::path("/tmp") : fs::canonical(temporary)) / "orvelbox-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) host::ThrowFileError(name, "make the directory", errno);
  path_ = name;
}

ScratchDirectory::~ScratchDirectory() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace orvelbox
