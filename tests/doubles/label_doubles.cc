// Doubles of the security-label library: labels are stored by path; a link's own label is stored under the link's path.
#include <cstring>
#include <string>

#include "orvel/smack.h"
#include "tests/doubles/platform.h"

namespace {

using doubles::Current;

// Only access labels are supported.
int SetLabel(const std::string& function, const std::string& path, const std::string& label, smack_label_type type) {
  Current().RecordCall(function + "(" + path + ", " + label + ")");
  if (type != SMACK_LABEL_ACCESS) return -1;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  Current().labels[path] = label;
  return 0;
}

ssize_t GetLabel(const std::string& function, const std::string& path, char** label, smack_label_type type) {
  Current().RecordCall(function + "(" + path + ")");
  if (type != SMACK_LABEL_ACCESS) return -1;
  if (const auto failure = Current().TakeFailure(function)) return *failure;
  const auto found = Current().labels.find(path);
  if (found == Current().labels.end()) return -1;
  *label = strdup(found->second.c_str());
  return static_cast<ssize_t>(found->second.size());
}

}  // namespace

int smack_setlabel(const char* path, const char* label, enum smack_label_type type) {
  return SetLabel("smack_setlabel", path, label, type);
}

int smack_lsetlabel(const char* path, const char* label, enum smack_label_type type) {
  return SetLabel("smack_lsetlabel", path, label, type);
}

ssize_t smack_getlabel(const char* path, char** label, enum smack_label_type type) {
  return GetLabel("smack_getlabel", path, label, type);
}

ssize_t smack_lgetlabel(const char* path, char** label, enum smack_label_type type) {
  return GetLabel("smack_lgetlabel", path, label, type);
}
