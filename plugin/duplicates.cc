// Handling duplicates, with the messages in the order that log readers know, and removing one.
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
#include "plugin/duplicate_policy.h"
#include "plugin/log_source.h"
#include "quarnel_util/quarnel_util.h"

namespace {

UniqueFd OpenForWriting(const std::string& path, int more_flags) {
  const int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  return UniqueFd(open(path.c_str(), flags | more_flags, 0666));
}

// Opens the information file, empty. Returns none when something other than a file has its name. The author of the
// package may have taken the name: a symbolic or hard link is removed and never written through, and opening must not
// wait for the other end of a pipe.
UniqueFd OpenInformationFile(const std::string& path) {
  UniqueFd made = OpenForWriting(path, O_EXCL);
  if (made.get() >= 0 || errno != EEXIST) return made;
  UniqueFd file = OpenForWriting(path, 0);
  bool link = file.get() < 0 && errno == ELOOP;
  if (file.get() >= 0) {
    struct stat status;
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return UniqueFd(-1);
    link = status.st_nlink != 1;
    if (!link && ftruncate(file.get(), 0) == 0) return file;
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

// Tells later readers of the package why the DLL is gone. When the text cannot be written, no file stays.
void LeaveInformationFile(const std::string& origin, const std::string& duplicated) {
  const UniqueFd file = OpenInformationFile(duplicated + std::string(kInformationFileSuffix));
  if (!file) return;
  std::string line = duplicated;
  line.append(" was deleted because ").append(origin).append(" exists\n");
  if (!WriteAll(file.get(), line)) return;
  WriteAll(file.get(), line.assign("Remove ").append(duplicated).append(" from OPK\n"));
}

}  // namespace

int isUniqueDll(const std::string& path, const std::string& name) {
  if (!IsAssemblyName(path) || !isRealPath(path)) return 1;
  const std::string* const origin = FindOrigin(ByPrecedence(OwnCatalogues()), name, isExistInList);
  if (origin == nullptr || !isDuplicatedDll(*origin, path)) return 1;
  removeFileAndLeaveInformationFile(*origin, path);
  return 0;
}

int isUniqueDll(const ListedFile& file) {
  const std::string name(file.name);
  return isUniqueDll(concatPath(file.directory, name), name);
}

bool isDuplicatedDll(const std::string& origin, const std::string& duplicated) {
  FunctionEntryExitTracker tracker("bool isDuplicatedDll(const std::string&, const std::string&)", kLogSource.unit,
                                   __LINE__);
  LOG_DEBUG(LOG_TEXT_COMPARED "%s" LOG_TEXT_COMPARED_WITH "%s", origin.c_str(), duplicated.c_str());
  const Exemption exemption = FindExemption(origin, duplicated, isDPCDll);
  if (exemption == Exemption::kSamePath) return false;
  if (exemption != Exemption::kNone) {
    // isDPCDll logs the same text without the line break. Existing log readers expect both lines.
    LOG_DEBUG(LOG_TEXT_DPC "%s\n", (exemption == Exemption::kOnDpcPath ? duplicated : origin).c_str());
    return false;
  }
  LOG_ERROR(LOG_TEXT_DUPLICATE_FOUND);
  LOG_ERROR(LOG_TEXT_ORIGIN "%s", origin.c_str());
  LOG_ERROR(LOG_TEXT_DUPLICATED "%s", duplicated.c_str());
  std::fprintf(stderr, "### Duplicated DLL found!!! Please remove duplicated dll ### Origin : %s, Duplicated : %s\n",
               origin.c_str(), duplicated.c_str());
  return true;
}

bool isDPCDll(const std::string& path) {
  FunctionEntryExitTracker tracker("bool isDPCDll(const std::string&)", kLogSource.unit, __LINE__);
  if (!IsOnDpcPath(path)) return false;
  LOG_DEBUG(LOG_TEXT_DPC "%s\n", path.c_str());
  return true;
}

void removeFileAndLeaveInformationFile(const std::string& origin, const std::string& duplicated) {
  FunctionEntryExitTracker tracker("void removeFileAndLeaveInformationFile(const std::string&, const std::string&)",
                                   kLogSource.unit, __LINE__);
  if (VerdictOnDuplicateOf(origin) == Verdict::kReportedOnly) {
    LOG_ERROR(LOG_TEXT_READ_WRITE);
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
