// Stands in for those platform libraries that the judging functions call; the hooks' own process gets the real ones.
#include "orvel/dlog.h"
#include "orvel/ovplatform.h"
#include "orvel/trace.h"
#include "orvelbox/check/platform_set.h"
#include "platform/host/device.h"

namespace {

std::string& ReadWriteRoot() {
  static std::string root = host::kDefaultReadWriteRoot;
  return root;
}

}  // namespace

namespace orvelbox {

void SetReadWriteRoot(const std::string& root) { ReadWriteRoot() = root; }

}  // namespace orvelbox

int __dlog_print(int /*log_id*/, int /*priority*/, const char* /*tag*/, const char* /*format*/, ...) { return 0; }

void trace_begin(const char* /*name*/, ...) {}

void trace_end(void) {}

const char* ovplatform_getenv(int variable) {
  return variable == OVPLATFORM_RW_APPS_ROOT ? ReadWriteRoot().c_str() : nullptr;
}
