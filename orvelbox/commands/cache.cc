// cache: the candidate loader's cache files, shown and verified.
#include "base/fixed_names.h"
#include "orvelbox/commands/device_choice.h"
#include "orvelbox/desk/output.h"
#include "orvelbox/desk/tree.h"
#include "orvelbox/device/cache_verify.h"
#include "orvelbox/device/listings.h"

namespace orvelbox {
namespace {

class Cache : public Command {
 public:
  Cache() : Command("cache", "Show the candidate loader's cache files, one entry a line", "cache verify") {
    AddOption(JsonFlag(&json_));
    AddCommand({"verify",
                "Look for what is wrong with them: markers, entries whose files are gone, packages that are not "
                "installed, entries that are there twice, roots that begin others",
                "Exit status: 0 nothing is wrong, 1 something is, 2 wrong usage.\nExample: orvelbox cache verify",
                {JsonFlag(&json_)},
                {},
                {},
                &verify_});
  }

  int Run(const GlobalOptions& global) const override {
    const host::Device device = OpenChosenDevice(global);
    return verify_ ? Verify(device) : Show(device);
  }

 private:
  int Show(const host::Device& device) const {
    const CacheText tpa = ReadCache(device, kTpaFile);
    const CacheText coba = ReadCache(device, kCobaFile);
    SayListing(json_, CachesJson(tpa, coba), DescribeCaches(tpa, coba));
    return kDone;
  }

  int Verify(const host::Device& device) const {
    const std::vector<host::Package> packages = ReadStore(device).List();
    std::vector<CacheFinding> findings = FindPrefixHazards(packages);
    for (const char* name : kCacheFiles) {
      const auto more = VerifyCache(name, ReadCache(device, name), packages,
                                    [&](const std::string& path) { return IsThere(device.OnDesk(path)); });
      findings.insert(findings.end(), more.begin(), more.end());
    }
    SayListing(json_, ToJson(findings), DescribeFindings(findings));
    return findings.empty() ? kDone : kFailed;
  }

  bool json_ = false;
  bool verify_ = false;
};

}  // namespace

std::unique_ptr<Command> MakeCache() { return std::make_unique<Cache>(); }

}  // namespace orvelbox
