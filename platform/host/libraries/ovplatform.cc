// liborvel_ovplatform: path variables from the device's configuration.
#include "orvel/ovplatform.h"

#include <mutex>
#include <set>
#include <string>

#include "platform/host/c_boundary.h"
#include "platform/host/device.h"

namespace {

// Keeps every returned text, because callers keep the pointers.
const char* Keep(const std::string& text) {
  static std::mutex mutex;
  static std::set<std::string> kept;
  const std::lock_guard<std::mutex> lock(mutex);
  return kept.insert(text).first->c_str();
}

}  // namespace

const char* ovplatform_getenv(int variable) {
  if (variable != OVPLATFORM_RW_APPS_ROOT) return nullptr;
  return host::AnswerOr<const char*>(nullptr, [] {
    const auto device = host::DeviceOfEnvironment();
    return Keep(device ? host::ReadConfig(*device).read_write_root : host::kDefaultReadWriteRoot);
  });
}
