// The search of a manifest for CoBA entries.
#include "plugin/manifest.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

// isCobaKey comparing an entry with the first `count` CoBA keys.
Steps Compared(const std::string& key, const std::string& value, std::size_t count = 4) {
  const Source matcher("metadata_utils", "isMetadataInfoHasKey");
  Steps steps;
  for (std::size_t i = 0; i < count; ++i) {
    steps = Join({steps, matcher.Debug("%s compare to %s, value : %s", key, value, support::kCobaKeys[i])});
  }
  return steps;
}

struct Row {
  const char* what;
  std::string xml;
  bool coba;
  Steps journal;
};

std::vector<Row> CobaRows() {
  const std::string bpi = support::kCobaKeys[3];
  const std::string coba = kCobaKey;
  const Steps matched_line = Plugin("isAppCoBARelated").Info("App has CoBA metadata");
  const auto matched = [](const std::string& key) {
    return Source("metadata_utils", "isMetadataInfoHasKey").Debug("%s matched", key);
  };
  const Steps found = Join({Compared(coba, "true", 1), matched(coba), matched_line});
  return {
      {"the CoBA key", "<manifest>" + MetadataElement(coba, "true") + "</manifest>", true,
       Join({LocalNames({"manifest", "metadata"}), found})},
      {"the last of the four keys", "<manifest>" + MetadataElement(bpi, "true") + "</manifest>", true,
       Join({LocalNames({"manifest", "metadata"}), Compared(bpi, "true"), matched(bpi), matched_line})},
      {"the value false", "<manifest>" + MetadataElement(coba, "false") + "</manifest>", false,
       Join({LocalNames({"manifest", "metadata"}), Compared(coba, "false"), LocalNames({"manifest"})})},
      {"no value, then a whole entry",
       "<manifest><metadata key='" + coba + "'/>" + MetadataElement(coba, "true") + "</manifest>", true,
       Join({LocalNames({"manifest", "metadata", "metadata"}), found})},
      {"no key", "<manifest><metadata value='true'/></manifest>", false,
       LocalNames({"manifest", "metadata", "manifest"})},
      {"another name", "<manifest><metadatas key='" + coba + "' value='true'/></manifest>", false,
       LocalNames({"manifest", "metadatas", "manifest"})},
      {"another letter case", "<manifest><Metadata key='" + coba + "' value='true'/></manifest>", false,
       LocalNames({"manifest", "Metadata", "manifest"})},
      {"a foreign entry before",
       "<manifest>" + MetadataElement("k", "true") + MetadataElement(coba, "true") + "</manifest>", true,
       Join({LocalNames({"manifest", "metadata"}), Compared("k", "true"), LocalNames({"metadata"}), found})},
      {"nothing after the entry is read",
       "<manifest>" + MetadataElement(coba, "true") + MetadataElement(coba, "true") + "</manifest>", true,
       Join({LocalNames({"manifest", "metadata"}), found})},
      {"an element with content is met twice",
       "<manifest><metadata key='" + coba + "' value='no'>x</metadata></manifest>", false,
       Join({LocalNames({"manifest", "metadata"}), Compared(coba, "no"), LocalNames({"#text", "metadata"}),
             Compared(coba, "no"), LocalNames({"manifest"})})},
      {"inside an application",
       "<manifest><ui-application>" + MetadataElement(coba, "true") + "</ui-application></manifest>", true,
       Join({LocalNames({"manifest", "ui-application", "metadata"}), found})},
  };
}

TEST(Manifest, the_first_coba_entry_makes_it_coba_related) {
  for (const Row& row : CobaRows()) {
    Fresh([&](Platform& platform) {
      EXPECT_EQ(row.coba, isAppCoBARelated(Parse(row.xml).get())) << row.what;
      EXPECT_TRUE(Holds(platform, CobaWalk(row.journal))) << row.what;
    });
  }
}

FRESH_TEST(Manifest, coba_relation_is_not_kept_between_calls) {
  EXPECT_TRUE(isAppCoBARelated(ManifestOf(MetadataElement(kCobaKey, "true")).get()));
  EXPECT_FALSE(isAppCoBARelated(DotnetManifest().get()));
}

FRESH_TEST(Manifest, a_null_manifest_is_not_coba_related) {
  EXPECT_FALSE(isAppCoBARelated(nullptr));
  EXPECT_TRUE(Holds(platform, {CobaWalk(Plugin("isAppCoBARelated").Error("xml provided is null"))}));
}

}  // namespace
}  // namespace unit
