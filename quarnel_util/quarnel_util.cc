// The launcher utility library.
#include "quarnel_util/quarnel_util.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstring>

#include "base/affix.h"
#include "base/log_line.h"
#include "base/log_texts.h"
#include "base/package_records.h"

namespace {

namespace fs = boost::filesystem;

constexpr LogSource kLogSource{kUtilityTag, "quarnel_util"};
constexpr char kListSeparator = ':';

std::string WithoutTrailingSlash(std::string path) {
  while (!path.empty() && path.back() == '/') path.pop_back();
  return path;
}

// The loader's lists would split a name at a separator and end at the first character of the end marker.
bool CanBeListed(const std::string& name) { return name.find_first_of(":[") == std::string::npos; }

// Does not use Boost's library: it may be built with 32-bit times and then fails on files with later dates.
bool IsRegularFile(const fs::path& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// The names of the assemblies in `directory`, sorted by byte.
std::vector<std::string> AssemblyNames(const fs::path& directory) {
  std::vector<std::string> names;
  boost::system::error_code error;
  for (fs::directory_iterator entry(directory, error), end; !error && entry != end; entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (!IsAssemblyName(name) || !CanBeListed(name)) continue;
    if (IsRegularFile(entry->path())) names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::string getRootPath(const std::string& pkgId) {
  pkgmgrinfo_pkginfo_h packageHandle = nullptr;
  if (pkgmgrinfo_pkginfo_get_pkginfo(pkgId.c_str(), &packageHandle) != 0) return "";
  const PackageRecord package(packageHandle);

  char* mainAppId = nullptr;
  if (pkgmgrinfo_pkginfo_get_mainappid(package.get(), &mainAppId) != 0 || mainAppId == nullptr) return "";
  pkgmgrinfo_appinfo_h applicationHandle = nullptr;
  if (pkgmgrinfo_appinfo_get_appinfo(mainAppId, &applicationHandle) != 0) return "";
  const ApplicationRecord application(applicationHandle);

  char* root = nullptr;
  if (pkgmgrinfo_appinfo_get_root_path(application.get(), &root) != 0 || root == nullptr) return "";
  return WithoutTrailingSlash(root);
}

std::string concatPath(const std::string& path1, const std::string& path2) {
  if (path1.empty()) return path2;
  if (path2.empty()) return path1;
  const std::size_t end = path1.find_last_not_of('/') + 1;
  const std::size_t begin = std::min(path2.find_first_not_of('/'), path2.size());
  std::string joined(end + 1 + path2.size() - begin, '/');
  path1.copy(&joined[0], end);
  path2.copy(&joined[end + 1], std::string::npos, begin);
  return joined;
}

std::string getAbsolutePath(const std::string& path) {
  if (path.empty() || path.front() == '/') return path;
  boost::system::error_code error;
  const fs::path workingDirectory = fs::current_path(error);
  return error ? path : concatPath(workingDirectory.string(), path);
}

void splitPath(const std::string& paths, std::vector<std::string>& out) {
  std::size_t begin = 0;
  while (begin < paths.size()) {
    const std::size_t end = std::min(paths.find(kListSeparator, begin), paths.size());
    if (end > begin) out.push_back(paths.substr(begin, end - begin));
    begin = end + 1;
  }
}

bool removeFile(const fs::path& path) {
  if (unlink(path.c_str()) == 0 || errno == ENOENT) return true;
  LOG_ERROR(LOG_TEXT_REMOVE_FAILED "%s" LOG_TEXT_REASON "%s", path.c_str(), std::strerror(errno));
  return false;
}

void addAssembliesFromDirectories(const std::vector<std::string>& directories, std::string& out) {
  for (const std::string& directory : directories) {
    for (const std::string& name : AssemblyNames(directory)) {
      if (!out.empty()) out += kListSeparator;
      out += concatPath(directory, name);
    }
  }
}
