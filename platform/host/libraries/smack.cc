// liborvel_smack: labels as extended attributes: security.SMACK64 as in the kernel's module, or user.SMACK64 where the
// kernel or the user may not set the first. Labels need not be valid for a kernel.
#include "orvel/smack.h"

#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace {

constexpr const char* kSecurityLabel = "security.SMACK64";
constexpr const char* kUserLabel = "user.SMACK64";
constexpr size_t kLongestLabel = 255;

using Set = int (*)(const char*, const char*, const void*, size_t, int);
using Get = ssize_t (*)(const char*, const char*, void*, size_t);
using Label = std::array<char, kLongestLabel>;

bool MeansNotHere(int error) {
  return error == ENOTSUP || error == EPERM || error == EACCES || error == EINVAL || error == ENODATA;
}

bool IsLabel(const char* label) { return label != nullptr && *label != '\0' && std::strlen(label) <= kLongestLabel; }

int SetLabel(Set set, Get get, const char* path, const char* label, smack_label_type type) {
  if (path == nullptr || !IsLabel(label) || type != SMACK_LABEL_ACCESS) {
    errno = EINVAL;
    return -1;
  }
  const size_t length = std::strlen(label);
  if (set(path, kSecurityLabel, label, length, 0) == 0) return 0;
  const int error = errno;
  // A security.SMACK64 label would hide a user.SMACK64 one.
  if (!MeansNotHere(error) || get(path, kSecurityLabel, nullptr, 0) >= 0) {
    errno = error;
    return -1;
  }
  return set(path, kUserLabel, label, length, 0);
}

ssize_t GetLabel(Get get, const char* path, char** label, smack_label_type type) {
  if (path == nullptr || label == nullptr || type != SMACK_LABEL_ACCESS) {
    errno = EINVAL;
    return -1;
  }
  Label value;
  ssize_t length = get(path, kSecurityLabel, value.data(), value.size());
  if (length < 0 && MeansNotHere(errno)) length = get(path, kUserLabel, value.data(), value.size());
  if (length < 0) return -1;
  char* copy = strndup(value.data(), static_cast<size_t>(length));
  if (copy == nullptr) return -1;
  *label = copy;
  return static_cast<ssize_t>(std::strlen(copy));
}

}  // namespace

int smack_setlabel(const char* path, const char* label, enum smack_label_type type) {
  return SetLabel(setxattr, getxattr, path, label, type);
}

int smack_lsetlabel(const char* path, const char* label, enum smack_label_type type) {
  return SetLabel(lsetxattr, lgetxattr, path, label, type);
}

ssize_t smack_getlabel(const char* path, char** label, enum smack_label_type type) {
  return GetLabel(getxattr, path, label, type);
}

ssize_t smack_lgetlabel(const char* path, char** label, enum smack_label_type type) {
  return GetLabel(lgetxattr, path, label, type);
}
