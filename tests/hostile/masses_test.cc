// Very large trees, manifests and cache files.
#include <libxml/parser.h>

#include <algorithm>
#include <random>

#include "plugin/hooks.h"
#include "plugin/manifest.h"
#include "tests/hostile/deep_tree.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

constexpr std::size_t kManifestSize = 100 << 20;
constexpr std::size_t kCacheSize = 100 << 20;

HOSTILE_TEST(Masses, ten_thousand_levels_are_walked_nine_levels_below_the_root) {
  MakeDeepTree(kRoot, "d", 10000);
  device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
  EXPECT_EQ(9991u, CountBelow(kRoot, "A.dll"));
  EXPECT_EQ(9u, CountBelow(kRoot, "A.dll_deleted"));
  RemoveDeepTree(kRoot);
}

TEST(Masses, the_duplicates_among_a_million_files_are_found) {
  constexpr int kDirectories = 100;
  constexpr int kFilesOfEach = 10000;
  OnWatchedDevice([](const WatchedDevice& device) {
    for (int d = 0; d < kDirectories; ++d) {
      const std::string directory = InPackage("bin" + std::to_string(d) + "/");
      for (int f = 0; f < kFilesOfEach - 1; ++f) WriteFile(directory + std::to_string(f) + ".dll");
      WriteFile(directory + "A.dll");
    }
    device.Send(PKGMGR_PARSER_PLUGIN_INSTALL);
    EXPECT_EQ(0u, CountBelow(kRoot, "A.dll"));
    EXPECT_EQ(std::size_t{kDirectories}, CountBelow(kRoot, "A.dll_deleted"));
    EXPECT_EQ(std::size_t{kDirectories * (kFilesOfEach - 1)}, CountBelow(kRoot, "*.dll"));
  });
}

// A manifest of that size: elements with the text `filling`, and the elements that matter at the end.
Document ManifestOfSize(std::size_t size, const std::string& filling) {
  std::string xml = "<manifest>";
  xml.reserve(size + 1000);
  while (xml.size() < size) xml += filling;
  xml += ApplicationElement("ui-application", "dotnet-inhouse") + MetadataElement(support::kCobaKey, "true") +
         "</manifest>";
  return Document(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "manifest", nullptr, XML_PARSE_HUGE));
}

void ExpectBothFound(const Document& document) {
  ASSERT_NE(nullptr, document);
  EXPECT_TRUE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
}

FRESH_TEST(Masses, a_manifest_of_100_mb_of_elements_is_read_to_its_end) {
  ExpectBothFound(ManifestOfSize(kManifestSize, ApplicationElement("ui-application", std::string(500, 'x')) +
                                                    MetadataElement(std::string(250, 'k'), std::string(250, 'v'))));
}

TEST(Masses, a_manifest_of_100_mb_of_text_is_read_to_its_end) {
  unit::Fresh([](doubles::Platform&) { ExpectBothFound(ManifestOfSize(kManifestSize, std::string(1 << 20, 'x'))); });
}

FRESH_TEST(Masses, an_attribute_of_100_mb_is_searched_to_its_end) {
  const std::string end = "dotnet-";
  ExpectBothFound(ManifestOfSize(0, ApplicationElement("ui-application", std::string(kManifestSize, 'x') + end)));
}

// A cache text with entries of other packages and `own` entries of the package between them, and the same without the
// latter.
struct CacheText {
  std::string whole = "[START]";
  std::string others = "[START]";
};

CacheText MakeCacheText(int own) {
  constexpr std::size_t kEntries = 1000000;
  CacheText text;
  for (std::size_t i = 0; i < kEntries; ++i) {
    const std::string entry = "/opt/usr/apps/other/shared/res/" + std::string(60, 'n') + std::to_string(i) + ".dll:";
    text.whole += entry;
    text.others += entry;
    if (i % (kEntries / static_cast<std::size_t>(own)) == 0) {
      text.whole += InPackage("shared/res/") + std::to_string(i) + ".dll:";
    }
  }
  for (std::string* list : {&text.whole, &text.others}) *list += "/opt/usr/apps/last/x.dll[END]";
  return text;
}

HOSTILE_TEST(Masses, a_package_is_taken_out_of_a_cache_file_of_100_mb) {
  const CacheText text = MakeCacheText(1000);
  ASSERT_LE(kCacheSize * 9 / 10, text.whole.size());
  WriteFile(kTpaFile, text.whole);
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_TRUE(text.others == ReadFile(kTpaFile)) << "what is left is not what others had there";
}

HOSTILE_TEST(Masses, a_package_is_added_to_a_cache_file_of_100_mb) {
  const CacheText text = MakeCacheText(1000);
  for (const char* file : {kTpaFile, kCobaFile}) WriteFile(file, text.whole);
  WriteFile(InPackage("shared/res/X.dll"));
  device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
  const std::string kept = text.others.substr(0, text.others.size() - 5);
  EXPECT_TRUE(kept + ":" + InPackage("shared/res/X.dll[END]") == ReadFile(kTpaFile));
  EXPECT_TRUE(kept + ":" + InPackage("shared/res/[END]") == ReadFile(kCobaFile));
}

HOSTILE_TEST(Masses, a_cache_file_of_100_mb_of_noise_stays_as_it_is) {
  std::string noise(kCacheSize, '\0');
  std::mt19937 engine(9);
  std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(engine()); });
  WriteFile(kTpaFile, noise);
  device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL);
  EXPECT_TRUE(noise == ReadFile(kTpaFile));
}

}  // namespace
}  // namespace hostile
