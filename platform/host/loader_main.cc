// dotnet-loader-inhouse: the desk's candidate loader. It loads nothing and checks whether a loader could.
#include <cstdio>

#include "platform/host/loader.h"

namespace {

int Run() {
  const auto device = host::DeviceOfEnvironment();
  if (!device) throw host::DeviceError(std::string(host::kDeviceVariable) + " names no device to start on");
  const auto start = host::StartLoader(kCacheDirectory);
  host::RecordLoaderStart(*device, start);
  if (start.error.empty()) return 0;
  throw host::DeviceError(start.error);
}

}  // namespace

int main() try { return Run(); } catch (const std::exception& error) {
  std::fprintf(stderr, "dotnet-loader-inhouse: %s\n", error.what());
  return 1;
}
