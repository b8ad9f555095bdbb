// Records that the libraries hand out by an untyped handle.
#ifndef ORVEL_PLATFORM_HOST_LIBRARIES_RECORDS_H_
#define ORVEL_PLATFORM_HOST_LIBRARIES_RECORDS_H_

#include <string>
#include <utility>

#include "platform/host/c_boundary.h"

namespace host {

// Makes a record of what `find` gives for `id`, and a handle to it. Returns 0, or -1.
template <typename Find>
int MakeRecord(const char* id, void** handle, const Find& find) {
  if (id == nullptr || handle == nullptr) return -1;
  return AnswerOr(-1, [&] {
    auto found = find(std::string(id));
    if (!found) return -1;
    *handle = new auto(std::move(*found));
    return 0;
  });
}

template <typename Record>
int DestroyRecord(void* handle) {
  if (handle == nullptr) return -1;
  delete static_cast<Record*>(handle);
  return 0;
}

}  // namespace host

#endif
