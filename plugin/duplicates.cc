// The duplicate policy and the removal of a duplicate.
#include "plugin/duplicates.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstdio>
#include <string>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "base/unique_fd.h"
#include "morvath/platform_utils.h"
#include "plugin/catalogues.h"
#include "plugin/duplicate_policy.h"
#include "plugin/log_source.h"
#include "quarnel_util/quarnel_util.h"
#include "util/platform_utils/directory_walk.h"
#include "util/platform_utils/read_write_area.h"

namespace {

// The catalogued path that decides about files called `name`; null when there is none.
const std::string* FindOrigin(const std::string& name) {
  for (const auto* catalogue : CataloguesByPrecedence()) {
    if (isExistInList(*catalogue, name)) return &catalogue->at(name);
  }
  return nullptr;
}

// isUniqueDll for what is known to be a DLL and no link.
int JudgeRealDll(const std::string& path, const std::string& name) {
  const std::string* const origin = FindOrigin(name);
  if (origin == nullptr || !isDuplicatedDll(*origin, path)) return 1;
  removeFileAndLeaveInformationFile(*origin, path);
  return 0;
}

UniqueFd OpenForWriting(const std::string& path, int more_flags = 0) {
  const int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  return UniqueFd(open(path.c_str(), flags | more_flags, 0666));
}

// Opens the information file, empty; none when something that is no file keeps its name. The name may be taken by
// whoever made the package: a link there, symbolic or hard, is removed and never written through, and a pipe must not
// hold up the installer.
UniqueFd OpenInformationFile(const std::string& path) {
  UniqueFd file = OpenForWriting(path);
  bool link = file.get() < 0 && errno == ELOOP;
  if (file.get() >= 0) {
    struct stat status;
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return UniqueFd(-1);
    link = status.st_nlink != 1;
    if (!link && (status.st_size == 0 || ftruncate(file.get(), 0) == 0)) return file;
  }
  if (!link || unlink(path.c_str()) != 0) return UniqueFd(-1);
  return OpenForWriting(path, O_EXCL);
}

bool WriteAll(int file, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(file, text.data() + written, text.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    written += static_cast<std::size_t>(count);
  }
  return true;
}

// Tells whoever looks into the package later what became of the DLL; without room for the text there is none.
void LeaveInformationFile(const std::string& origin, const std::string& duplicated) {
  const UniqueFd file = OpenInformationFile(duplicated + std::string(kInformationFileSuffix));
  if (file && WriteAll(file.get(), duplicated + " was deleted because " + origin + " exists\n")) {
    WriteAll(file.get(), "Remove " + duplicated + " from OPK\n");
  }
}

}  // namespace

int isUniqueDll(const std::string& path, const std::string& name) {
  if (!IsAssemblyName(path) || !isRealPath(path)) return 1;
  return JudgeRealDll(path, name);
}

PackageJudge::PackageJudge(const std::string& packageRoot) : packageRoot_(packageRoot) {
  for (const auto* catalogue : CataloguesByPrecedence()) {
    for (const auto& [name, path] : *catalogue) catalogued_.Add(name);
  }
}

int PackageJudge::Judge(const ListedFile& file) const {
  if (!IsAssemblyName(file.name())) return 1;
  if (file.regular() && !catalogued_.MayHold(file.name())) return 1;
  const std::string& path = file.path();
  const std::string name(file.name());
  if (IsDuplicate(path, name) && IsReachedThroughLink(path)) return 1;
  return file.regular() ? JudgeRealDll(path, name) : isUniqueDll(path, name);
}

// The walk enters no link, but whoever can write to the package may have put one there since.
bool PackageJudge::IsReachedThroughLink(const std::string& path) const {
  std::string directory = path;
  while (directory.size() > packageRoot_.size()) {
    directory.resize(directory.rfind('/'));
    if (!isRealPath(directory)) return true;
  }
  return false;
}

bool isDuplicatedDll(const std::string& origin, const std::string& duplicated) {
  FunctionEntryExitTracker tracker("bool isDuplicatedDll(const std::string&, const std::string&)", kLogSource.unit,
                                   __LINE__);
  LOG_DEBUG("### Duplicated Checker ### Origin : %s, Duplicated : %s", origin.c_str(), duplicated.c_str());
  if (origin == duplicated) return false;
  for (const std::string* path : {&origin, &duplicated}) {
    if (isDPCDll(*path)) {
      // Said a second time, with its line break, as isDPCDll does: readers of the log count on both.
      LOG_DEBUG("Is DPC DLL %s\n", path->c_str());
      return false;
    }
  }
  LOG_ERROR("### Duplicated DLL found ###");
  LOG_ERROR("Origin : %s", origin.c_str());
  LOG_ERROR("Duplicated : %s", duplicated.c_str());
  std::fprintf(stderr, "### Duplicated DLL found!!! Please remove duplicated dll ### Origin : %s, Duplicated : %s\n",
               origin.c_str(), duplicated.c_str());
  return true;
}

bool isDPCDll(const std::string& path) {
  FunctionEntryExitTracker tracker("bool isDPCDll(const std::string&)", kLogSource.unit, __LINE__);
  if (!IsOnDpcPath(path)) return false;
  LOG_DEBUG("Is DPC DLL %s\n", path.c_str());
  return true;
}

void removeFileAndLeaveInformationFile(const std::string& origin, const std::string& duplicated) {
  FunctionEntryExitTracker tracker("void removeFileAndLeaveInformationFile(const std::string&, const std::string&)",
                                   kLogSource.unit, __LINE__);
  if (IsInReadWriteArea(origin)) {
    LOG_ERROR("Origin file is in RW area. so doesn't remove duplicate file");
    std::fputs("### INSTALL : morvath, org file is in rw \n", stderr);
    return;
  }
  removeFile(duplicated);
  LeaveInformationFile(origin, duplicated);
}

bool exist(const boost::filesystem::path& path) {
  boost::system::error_code error;
  const boost::filesystem::file_status status = boost::filesystem::status(path, error);
  if (error) LOG_ERROR("Failed to check %s exists : %s", path.c_str(), error.message().c_str());
  return boost::filesystem::exists(status);
}
