// What the tests of archives share.
#ifndef TESTS_ORVELBOX_PACKAGE_ARCHIVE_FRAME_H_
#define TESTS_ORVELBOX_PACKAGE_ARCHIVE_FRAME_H_

#include "orvelbox/package/archive.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/zip.h"

namespace orvelbox {

using support::ZipOf;

// The contents by path; directories have the path "PATH/".
inline std::map<std::string, std::string> Contents(const std::string& file, const ArchiveLimits& limits = {}) {
  const Archive archive(file, limits);
  std::map<std::string, std::string> all;
  for (const ArchiveEntry& entry : archive.entries()) {
    std::string& text = all[entry.path + (entry.directory ? "/" : "")];
    ReadContent(archive, entry, [&](std::string_view piece) { text += piece; });
  }
  return all;
}

inline std::map<std::string, std::string> Read(const std::string& zip, const ArchiveLimits& limits = {}) {
  const support::TempDir dir;
  WriteFile(dir / "a.opk", zip);
  return Contents(dir / "a.opk", limits);
}

inline std::string ProblemOf(const std::string& zip, const ArchiveLimits& limits = {}) {
  const std::string text = ErrorOf([&] { Read(zip, limits); });
  return text.find("a.opk") == std::string::npos ? text : text.substr(text.find("a.opk"));
}

}  // namespace orvelbox

#endif
