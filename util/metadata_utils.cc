// The metadata vocabulary and its matchers.
#include "morvath/metadata_utils.h"

#include <algorithm>
#include <array>

#include "util/log.h"

namespace {

constexpr LogSource kLogSource{kUtilityTag, "metadata_utils"};

std::string DeveloperKey(const char* name) {
  return std::string("http://" ORVEL_DEVELOPER_HOST "/orvel/metadata/") + name;
}

std::string TvKey(const char* name) { return std::string("http://" ORVEL_TV_HOST "/tv/metadata/") + name; }

bool IsComplete(const Metadata* md) { return md != nullptr && md->key != nullptr && md->value != nullptr; }

}  // namespace

namespace MetadataKey {
const std::string coBA = DeveloperKey("support-fs-external-component");
const std::string viewPlugin = DeveloperKey("support-view-plugin");
const std::string viewPluginPage = DeveloperKey("support-view-plugin-page");
const std::string bpi = DeveloperKey("support-bpi");
const std::string dpcRequired = TvKey("d.pc/required");
const std::string dpcType = TvKey("d.pc/type");
const std::string preferDotnetAot = "http://" ORVEL_NAMESPACE_HOST "/metadata/prefer_dotnet_aot";
}  // namespace MetadataKey

const std::string metadataValueTrue = "true";
const std::string metadataValueDpcorvelfxtv = "orvelfxtv";

bool isMetadataInfoHasKey(Metadata* md, std::string key) {
  if (!IsComplete(md)) return false;
  // The order of the arguments does not match the wording. Log readers rely on this order.
  LOG_DEBUG("%s compare to %s, value : %s", md->key, md->value, key.c_str());
  if (md->key != key || md->value != metadataValueTrue) return false;
  LOG_DEBUG("%s matched", key.c_str());
  return true;
}

bool isDpcKey(Metadata* md) {
  if (!IsComplete(md)) return false;
  LOG_DEBUG("%s compare to %s, value : %s", md->key, MetadataKey::dpcType.c_str(), md->value);
  if (md->key != MetadataKey::dpcType || md->value != metadataValueDpcorvelfxtv) return false;
  LOG_DEBUG("%s matched", MetadataKey::dpcType.c_str());
  return true;
}

bool isPreferDotNETAOTKey(Metadata* md) { return isMetadataInfoHasKey(md, MetadataKey::preferDotnetAot); }

bool isCobaKey(Metadata* md) {
  const std::array<const std::string*, 4> candidates = {&MetadataKey::coBA, &MetadataKey::viewPlugin,
                                                        &MetadataKey::viewPluginPage, &MetadataKey::bpi};
  return std::any_of(candidates.begin(), candidates.end(),
                     [md](const std::string* key) { return isMetadataInfoHasKey(md, *key); });
}
