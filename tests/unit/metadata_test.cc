// Metadata keys, values and matchers.
#include "morvath/metadata_utils.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

const Source kHasKey("metadata_utils", "isMetadataInfoHasKey");
const Source kIsDpc("metadata_utils", "isDpcKey");

using support::kAotKey;
using support::kCobaKeys;
using support::kDpcRequiredKey;
using support::kDpcTypeKey;

Steps Compared(const std::string& entry_key, const std::string& value, const std::string& key) {
  return kHasKey.Debug("%s compare to %s, value : %s", entry_key, value, key);
}

Steps Matched(const std::string& key) { return kHasKey.Debug("%s matched", key); }

// An entry that does not own its texts.
Metadata Entry(const std::string& key, const char* value) { return {key.c_str(), value}; }
Metadata Entry(const std::string& key, const std::string& value) { return Entry(key, value.c_str()); }
Metadata Entry(std::string&& key, const char* value) = delete;

TEST(MetadataVocabulary, the_constants_hold_their_uris_and_values) {
  EXPECT_EQ(kCobaKeys[0], MetadataKey::coBA);
  EXPECT_EQ(kCobaKeys[1], MetadataKey::viewPlugin);
  EXPECT_EQ(kCobaKeys[2], MetadataKey::viewPluginPage);
  EXPECT_EQ(kCobaKeys[3], MetadataKey::bpi);
  EXPECT_EQ(kDpcRequiredKey, MetadataKey::dpcRequired);
  EXPECT_EQ(kDpcTypeKey, MetadataKey::dpcType);
  EXPECT_EQ(kAotKey, MetadataKey::preferDotnetAot);
  EXPECT_EQ("true", metadataValueTrue);
  EXPECT_EQ("orvelfxtv", metadataValueDpcorvelfxtv);
}

struct HasKeyRow {
  std::string entry_key;
  std::string value;
  std::string key;
  bool matches;
};

TEST(MetadataMatchers, an_entry_has_a_key_when_key_and_the_value_true_are_equal_byte_by_byte) {
  const HasKeyRow rows[] = {
      {"k", "true", "k", true},       {"k", "True", "k", false}, {"k", "1", "k", false},     {"k", "", "k", false},
      {"k", "true ", "k", false},     {"k", "tru", "k", false},  {"k", "trues", "k", false}, {"k/", "true", "k", false},
      {"k", "true", "k/", false},     {"K", "true", "k", false}, {"", "true", "", true},     {"k", "true", "", false},
      {"%s%n", "true", "%s%n", true},
  };
  for (const HasKeyRow& row : rows) {
    Platform& platform = doubles::Reset();
    Metadata entry = Entry(row.entry_key, row.value);
    EXPECT_EQ(row.matches, isMetadataInfoHasKey(&entry, row.key)) << row.entry_key << " = " << row.value;
    EXPECT_TRUE(
        Holds(platform, {Compared(row.entry_key, row.value, row.key), row.matches ? Matched(row.key) : Steps{}}));
  }
}

TEST(MetadataMatchers, an_entry_without_key_or_value_matches_nothing_and_is_not_logged) {
  Metadata without_key{nullptr, "true"};
  Metadata without_value{"k", nullptr};
  for (Metadata* entry : {static_cast<Metadata*>(nullptr), &without_key, &without_value}) {
    Platform& platform = doubles::Reset();
    EXPECT_FALSE(isMetadataInfoHasKey(entry, "k"));
    EXPECT_FALSE(isDpcKey(entry));
    EXPECT_FALSE(isPreferDotNETAOTKey(entry));
    EXPECT_FALSE(isCobaKey(entry));
    EXPECT_TRUE(Holds(platform, Steps{}));
  }
}

TEST(MetadataMatchers, a_coba_entry_is_compared_until_its_key_is_met) {
  const std::vector<std::string> keys(std::begin(kCobaKeys), std::end(kCobaKeys));
  for (std::size_t met = 0; met < keys.size(); ++met) {
    Platform& platform = doubles::Reset();
    Metadata entry = Entry(keys[met], "true");
    EXPECT_TRUE(isCobaKey(&entry));
    Steps journal;
    for (std::size_t i = 0; i <= met; ++i) journal = Join({journal, Compared(keys[met], "true", keys[i])});
    EXPECT_TRUE(Holds(platform, {journal, Matched(keys[met])}));
  }
}

TEST(MetadataMatchers, any_other_entry_is_compared_with_all_four_coba_keys) {
  const std::vector<std::string> keys(std::begin(kCobaKeys), std::end(kCobaKeys));
  const std::pair<std::string, std::string> entries[] = {{keys[0], "True"},          {keys[0], "1"},
                                                         {keys[0], "false"},         {keys[0] + "/", "true"},
                                                         {keys[3] + "/", "true"},    {kDpcRequiredKey, "true"},
                                                         {kDpcTypeKey, "orvelfxtv"}, {kAotKey, "true"}};
  for (const auto& [key, value] : entries) {
    Platform& platform = doubles::Reset();
    Metadata entry = Entry(key, value);
    EXPECT_FALSE(isCobaKey(&entry)) << key << " = " << value;
    EXPECT_TRUE(Holds(platform, {Compared(key, value, keys[0]), Compared(key, value, keys[1]),
                                 Compared(key, value, keys[2]), Compared(key, value, keys[3])}));
  }
}

TEST(MetadataMatchers, only_the_dpc_type_with_its_own_value_is_a_dpc_entry) {
  const HasKeyRow rows[] = {
      {kDpcTypeKey, "orvelfxtv", "", true},
      {kDpcTypeKey, "true", "", false},
      {kDpcTypeKey, "Orvelfxtv", "", false},
      {kDpcTypeKey, "orvelfxtv2", "", false},
      {std::string(kDpcTypeKey) + "/", "orvelfxtv", "", false},
      {kDpcRequiredKey, "orvelfxtv", "", false},
      {kDpcRequiredKey, "true", "", false},
  };
  for (const HasKeyRow& row : rows) {
    Platform& platform = doubles::Reset();
    Metadata entry = Entry(row.entry_key, row.value);
    EXPECT_EQ(row.matches, isDpcKey(&entry)) << row.entry_key << " = " << row.value;
    EXPECT_TRUE(Holds(platform, {kIsDpc.Debug("%s compare to %s, value : %s", row.entry_key, kDpcTypeKey, row.value),
                                 row.matches ? kIsDpc.Debug("%s matched", kDpcTypeKey) : Steps{}}));
  }
}

TEST(MetadataMatchers, the_ahead_of_time_preference_is_asked_like_any_key) {
  const HasKeyRow rows[] = {
      {kAotKey, "true", "", true}, {kAotKey, "TRUE", "", false}, {kDpcRequiredKey, "true", "", false}};
  for (const HasKeyRow& row : rows) {
    Platform& platform = doubles::Reset();
    Metadata entry = Entry(row.entry_key, row.value);
    EXPECT_EQ(row.matches, isPreferDotNETAOTKey(&entry));
    EXPECT_TRUE(
        Holds(platform, {Compared(row.entry_key, row.value, kAotKey), row.matches ? Matched(kAotKey) : Steps{}}));
  }
}

TEST(MetadataMatchers, the_dpc_requirement_matches_nothing_whatever_its_value) {
  for (const char* value : {"true", "orvelfxtv", ""}) {
    Metadata entry = {MetadataKey::dpcRequired.c_str(), value};
    EXPECT_FALSE(isCobaKey(&entry));
    EXPECT_FALSE(isDpcKey(&entry));
    EXPECT_FALSE(isPreferDotNETAOTKey(&entry));
  }
}

}  // namespace
}  // namespace unit
