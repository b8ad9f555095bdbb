// Assembly file helpers.
#include "morvath/assembly_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <string_view>

#include "base/affix.h"
#include "base/fixed_names.h"
#include "morvath/platform_utils.h"
#include "orvel/smack.h"
#include "quarnel_util/quarnel_util.h"
#include "util/platform_utils/log_source.h"

namespace {

// Removes `suffix` from the end of `text`, ignoring case. Returns whether it was there.
bool DropSuffixIgnoringCase(std::string& text, std::string_view suffix) {
  if (text.size() < suffix.size()) return false;
  const std::size_t stem = text.size() - suffix.size();
  if (!EqualsIgnoringCase(text.c_str() + stem, suffix)) return false;
  text.resize(stem);
  return true;
}

struct FreeLabel {
  void operator()(char* label) const { std::free(label); }
};

void CopyLabel(const std::string& getPath, const std::string& setPath, bool isSymlink) {
  const auto get = isSymlink ? smack_lgetlabel : smack_getlabel;
  const auto set = isSymlink ? smack_lsetlabel : smack_setlabel;
  char* text = nullptr;
  if (get(getPath.c_str(), &text, SMACK_LABEL_ACCESS) < 0) return;
  const std::unique_ptr<char, FreeLabel> label(text);
  if (set(setPath.c_str(), label.get(), SMACK_LABEL_ACCESS) < 0) std::fputs("Fail to set smack label\n", stderr);
}

void CopyOwner(const std::string& getPath, const std::string& setPath, bool isSymlink) {
  struct stat status;
  if (stat(getPath.c_str(), &status) != 0) return;
  const auto change = isSymlink ? lchown : chown;
  if (change(setPath.c_str(), status.st_uid, status.st_gid) == -1) {
    std::fputs("Failed to change owner and group name\n", stderr);
  }
}

}  // namespace

std::string stripNiDLL(const std::string& name) {
  constexpr std::size_t kShortestWithExtension = 5;
  std::string stem = name;
  if (stem.size() < kShortestWithExtension) return stem;
  if (!DropSuffixIgnoringCase(stem, ".dll")) DropSuffixIgnoringCase(stem, ".exe");
  DropSuffixIgnoringCase(stem, ".ni");
  return stem;
}

void addPlatformAssembliesPaths(const std::string& paths, std::vector<std::string>& out) {
  std::vector<std::string> entries;
  splitPath(paths, entries);
  std::transform(entries.begin(), entries.end(), entries.begin(), getAbsolutePath);
  out.insert(out.end(), std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()));
}

void printAll(const std::string& paths) {
  std::vector<std::string> entries;
  splitPath(paths, entries);
  for (const std::string& entry : entries) LOG_TRACE("%s", entry.c_str());
}

bool isCrashed(std::string content) { return !HasPrefix(content, kStartMarker) || !HasSuffix(content, kEndMarker); }

bool setSmack(const std::string& path, const std::string& label) {
  if (smack_setlabel(path.c_str(), label.c_str(), SMACK_LABEL_ACCESS) >= 0) return true;
  LOG_ERROR("Fail to set smack label\n : %s : %s", path.c_str(), label.c_str());
  return false;
}

void updateAssemblyInfo(const std::string& getPath, const std::string& setPath, bool isSymlink) {
  CopyLabel(getPath, setPath, isSymlink);
  CopyOwner(getPath, setPath, isSymlink);
}

std::string readSelfPath() {
  std::array<char, 4096> target;
  const ssize_t length = readlink("/proc/self/exe", target.data(), target.size() - 1);
  if (length < 0) return "";
  target[static_cast<std::size_t>(length)] = '\0';
  return target.data();
}

uint64_t getFileSize(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

void itoaForSignalHandler(int value, char* buf) {
  if (buf == nullptr) return;
  int digits = 0;
  for (int rest = value; rest != 0; rest /= 10) ++digits;
  buf[digits] = '\0';
  for (int rest = value; rest != 0; rest /= 10) buf[--digits] = static_cast<char>('0' + rest % 10);
}
