// cache: shows and verifies the candidate loader's cache files.
#include "base/fixed_names.h"
#include "orvelbox/commands/shared.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/device/cache_text.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {
namespace {

int Show(const host::Device& device, bool json) {
  const CacheText tpa = ReadCache(device, kTpaFile);
  const CacheText coba = ReadCache(device, kCobaFile);
  SayListing(json, CachesJson(tpa, coba), DescribeCaches(tpa, coba));
  return kDone;
}

int Verify(const host::Device& device, bool json) {
  const std::vector<host::Package> packages = ReadStore(device).List();
  std::vector<CacheFinding> findings = FindPrefixHazards(packages);
  for (const char* name : kCacheFiles) {
    const auto more = VerifyCache(name, ReadCache(device, name), packages,
                                  [&](const std::string& path) { return IsThere(device.OnDesk(path)); });
    findings.insert(findings.end(), more.begin(), more.end());
  }
  SayListing(json, ToJson(findings), DescribeFindings(findings));
  return findings.empty() ? kDone : kFailed;
}

}  // namespace

Command MakeCache() {
  Command command("cache", "Show the loader's cache files, or verify them", "cache verify");
  const auto& json = command.Take<bool>(JsonFlag());
  const auto& verify = command.AddCommand("verify", "Look for what is wrong with them",
                                          "Wrong are markers, entries whose files are gone, packages that are not "
                                          "installed, entries that are there twice,\n"
                                          "and roots that begin others.\nExit status: 0 nothing is wrong, 1 something "
                                          "is, 2 wrong usage.\nExample: orvelbox cache verify");
  command.run = [&json, &verify](const GlobalOptions& global) {
    const host::Device device = OpenChosenDevice(global);
    return verify ? Verify(device, json) : Show(device, json);
  };
  return command;
}

}  // namespace orvelbox
