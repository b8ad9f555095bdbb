// The walk over a manifest: is it dotnet-inhouse? And what this walk shares with the search for CoBA entries.
#include "plugin/manifest.h"

#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

// A document whose second element has no name, as no parsed text has.
class NamelessManifest {
 public:
  explicit NamelessManifest(const std::string& elements_behind)
      : document_(ManifestOf("<x/>" + elements_behind)), node_(xmlDocGetRootElement(document_.get())->children) {
    name_ = node_->name;
    node_->name = nullptr;
  }
  ~NamelessManifest() { node_->name = name_; }
  NamelessManifest(const NamelessManifest&) = delete;
  NamelessManifest& operator=(const NamelessManifest&) = delete;

  xmlDocPtr get() const { return document_.get(); }

 private:
  Document document_;
  xmlNode* node_;
  const xmlChar* name_;
};

// Counts the blocks of memory that libxml2 holds while this lives.
class XmlMemory {
 public:
  XmlMemory() { xmlMemSetup(&Free, &Allocate, &Reallocate, &Duplicate); }
  ~XmlMemory() { xmlMemSetup(&std::free, &std::malloc, &std::realloc, &strdup); }
  XmlMemory(const XmlMemory&) = delete;
  XmlMemory& operator=(const XmlMemory&) = delete;

  static int blocks() { return blocks_; }

 private:
  static void Free(void* block) {
    if (block != nullptr) --blocks_;
    std::free(block);
  }
  static void* Allocate(std::size_t size) {
    ++blocks_;
    return std::malloc(size);
  }
  static void* Reallocate(void* block, std::size_t size) {
    if (block == nullptr) ++blocks_;
    return std::realloc(block, size);
  }
  static char* Duplicate(const char* text) {
    ++blocks_;
    return strdup(text);
  }

  inline static int blocks_ = 0;
};

struct Row {
  const char* what;
  std::string xml;
  bool inhouse;
  Steps journal;
};

std::vector<Row> DotnetRows() {
  const Steps dotnet = Plugin("isAppDotnetInhouse").Info("App is dotnet-*");
  const Steps sample = Plugin("isAppDotnetInhouse").Info("### Is sample app ###");
  const auto application = [](const char* name, const char* type) {
    return "<manifest>" + ApplicationElement(name, type) + "</manifest>";
  };
  return {
      {"a ui application", application("ui-application", "dotnet-inhouse"), true,
       Join({Names({"manifest", "ui-application"}), dotnet})},
      {"a service application", application("service-application", "dotnet-x"), true,
       Join({Names({"manifest", "service-application"}), dotnet})},
      {"a widget application", application("widget-application", "dotnet-"), true,
       Join({Names({"manifest", "widget-application"}), dotnet})},
      {"the text within the type", application("ui-application", "x-dotnet-y"), true,
       Join({Names({"manifest", "ui-application"}), dotnet})},
      {"the manifest itself", "<ui-application type='dotnet-inhouse'/>", true,
       Join({Names({"ui-application"}), dotnet})},
      {"the type without its dash", application("ui-application", "dotnet"), false,
       Names({"manifest", "ui-application", "manifest"})},
      {"other letter case", application("ui-application", "Dotnet-inhouse"), false,
       Names({"manifest", "ui-application", "manifest"})},
      {"an empty type", application("ui-application", ""), false, Names({"manifest", "ui-application", "manifest"})},
      {"a sample app", application("ui-application", "apitest"), false,
       Join({Names({"manifest", "ui-application"}), sample})},
      {"a dotnet sample app", application("ui-application", "dotnet-apitest"), false,
       Join({Names({"manifest", "ui-application"}), sample})},
      {"a sample app before a dotnet one",
       "<manifest>" + ApplicationElement("ui-application", "apitests") +
           ApplicationElement("ui-application", "dotnet-inhouse") + "</manifest>",
       false, Join({Names({"manifest", "ui-application"}), sample})},
      {"a dotnet app before a sample one",
       "<manifest>" + ApplicationElement("ui-application", "dotnet-inhouse") +
           ApplicationElement("ui-application", "apitest") + "</manifest>",
       true, Join({Names({"manifest", "ui-application"}), dotnet})},
      {"no type before a dotnet one",
       "<manifest><service-application/>" + ApplicationElement("widget-application", "dotnet-inhouse") + "</manifest>",
       true, Join({Names({"manifest", "service-application", "widget-application"}), dotnet})},
      {"another type before a dotnet one",
       "<manifest>" + ApplicationElement("ui-application", "capp") +
           ApplicationElement("ui-application", "dotnet-inhouse") + "</manifest>",
       true, Join({Names({"manifest", "ui-application", "ui-application"}), dotnet})},
      {"another attribute", "<manifest><ui-application Type='dotnet-x' kind='dotnet-x'/></manifest>", false,
       Names({"manifest", "ui-application", "manifest"})},
      {"a longer name", application("ui-applications", "dotnet-inhouse"), false,
       Names({"manifest", "ui-applications", "manifest"})},
      {"a shorter name", application("ui-applicatio", "dotnet-inhouse"), false,
       Names({"manifest", "ui-applicatio", "manifest"})},
      {"a name in other letter case", application("UI-application", "dotnet-inhouse"), false,
       Names({"manifest", "UI-application", "manifest"})},
      {"a qualified name", "<manifest xmlns:a='u'><a:ui-application type='dotnet-inhouse'/></manifest>", false,
       Names({"manifest", "a:ui-application", "manifest"})},
      {"nodes of every kind and end tags",
       "<manifest> <!--c--><?p i?><label>x</label><ui-application type='dotnet-x'/></manifest>", true,
       Join({Names({"manifest", "#text", "#comment", "p", "label", "#text", "label", "ui-application"}), dotnet})},
      {"an application deep inside", "<manifest><a><b><ui-application type='dotnet-x'/></b></a></manifest>", true,
       Join({Names({"manifest", "a", "b", "ui-application"}), dotnet})},
  };
}

TEST(Manifest, the_first_application_element_that_decides_makes_it_dotnet_inhouse_or_not) {
  for (const Row& row : DotnetRows()) {
    Fresh([&](Platform& platform) {
      EXPECT_EQ(row.inhouse, isAppDotnetInhouse(Parse(row.xml).get())) << row.what;
      EXPECT_TRUE(Holds(platform, row.journal)) << row.what;
    });
  }
}

FRESH_TEST(Manifest, a_null_manifest_is_not_dotnet_inhouse) {
  EXPECT_FALSE(isAppDotnetInhouse(nullptr));
  EXPECT_TRUE(Holds(platform, {Plugin("isAppDotnetInhouse").Error("xml provided is null")}));
}

FRESH_TEST(Manifest, after_a_dotnet_inhouse_manifest_every_one_that_is_not_null_is_one) {
  EXPECT_FALSE(isAppDotnetInhouse(Parse("<manifest/>").get()));
  EXPECT_TRUE(isAppDotnetInhouse(DotnetManifest().get()));
  platform.journal.clear();
  EXPECT_TRUE(isAppDotnetInhouse(Parse("<manifest/>").get()));
  EXPECT_TRUE(Holds(platform, {Names({"manifest"})}));
  EXPECT_TRUE(isAppDotnetInhouse(ManifestOf(ApplicationElement("ui-application", "apitest")).get()));
  EXPECT_FALSE(isAppDotnetInhouse(nullptr));
  EXPECT_TRUE(isAppDotnetInhouse(Parse("<manifest/>").get()));
}

FRESH_TEST(Manifest, a_walker_that_cannot_be_made_answers_false_without_a_line) {
  interposed::Now().walker_fails = true;
  EXPECT_FALSE(isAppDotnetInhouse(DotnetManifest().get()));
  EXPECT_TRUE(Holds(platform, Steps{}));
  EXPECT_FALSE(isAppCoBARelated(ManifestOf(MetadataElement(kCobaKey, "true")).get()));
  EXPECT_TRUE(Holds(platform, {CobaWalk({})}));
  EXPECT_TRUE(platform.Calls("xmlTextReaderRead").empty());
}

FRESH_TEST(Manifest, a_walker_that_cannot_be_made_answers_false_even_after_a_dotnet_inhouse_manifest) {
  EXPECT_TRUE(isAppDotnetInhouse(DotnetManifest().get()));
  interposed::Now().walker_fails = true;
  EXPECT_FALSE(isAppDotnetInhouse(DotnetManifest().get()));
}

FRESH_TEST(Manifest, a_node_without_a_name_ends_the_walk_with_an_error_line) {
  const NamelessManifest manifest(ApplicationElement("ui-application", "dotnet-inhouse"));
  EXPECT_FALSE(isAppDotnetInhouse(manifest.get()));
  EXPECT_TRUE(Holds(platform,
                    {Names({"manifest"}), Plugin("isAppDotnetInhouse").Error("Error: Failed xmlTextReaderConstName")}));
  EXPECT_TRUE(isAppDotnetInhouse(DotnetManifest().get()));
  EXPECT_TRUE(isAppDotnetInhouse(manifest.get()));  // what was seen before
}

FRESH_TEST(Manifest, a_parse_error_ends_the_walk_as_the_end_of_the_document_does) {
  const Document document =
      ManifestOf(ApplicationElement("ui-application", "dotnet-inhouse") + MetadataElement(kCobaKey, "true"));
  interposed::Now().nodes_to_read = 1;
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  interposed::Now().nodes_to_read = 2;
  EXPECT_FALSE(isAppCoBARelated(document.get()));
  EXPECT_TRUE(Holds(platform, {Names({"manifest"}), CobaWalk(LocalNames({"manifest", "ui-application"}))}));
}

FRESH_TEST(Manifest, no_memory_of_a_walk_is_kept) {
  const XmlMemory memory;
  const auto manifest = ManifestOf(ApplicationElement("ui-application", "capp") + MetadataElement(kCobaKey, "true"));
  const int before = memory.blocks();
  EXPECT_FALSE(isAppDotnetInhouse(manifest.get()));
  EXPECT_EQ(before, memory.blocks());
  EXPECT_TRUE(isAppCoBARelated(manifest.get()));
  EXPECT_EQ(before, memory.blocks());
}

FRESH_TEST(Manifest, an_empty_document_declares_nothing) {
  const Document document(xmlNewDoc(nullptr));
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  EXPECT_FALSE(isAppCoBARelated(document.get()));
  EXPECT_TRUE(Holds(platform, {CobaWalk({})}));
}

FRESH_TEST(Manifest, the_document_is_left_as_it_was) {
  const Document document =
      ManifestOf(ApplicationElement("ui-application", "dotnet-inhouse") + MetadataElement(kCobaKey, "true"));
  isAppDotnetInhouse(document.get());
  isAppCoBARelated(document.get());
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(document.get(), &text, &size);
  EXPECT_EQ("<?xml version=\"1.0\"?>\n<manifest><ui-application type=\"dotnet-inhouse\"/><metadata key=\"" +
                std::string(kCobaKey) + "\" value=\"true\"/></manifest>\n",
            std::string(reinterpret_cast<const char*>(text)));
  xmlFree(text);
}

FRESH_TEST(Manifest, a_node_without_a_name_ends_the_search_for_coba_entries) {
  const NamelessManifest manifest(MetadataElement(kCobaKey, "true"));
  EXPECT_FALSE(isAppCoBARelated(manifest.get()));
  EXPECT_TRUE(
      Holds(platform, {CobaWalk(Join({LocalNames({"manifest"}),
                                      Plugin("isAppCoBARelated").Error("Error: Failed xmlTextReaderConstName")}))}));
}

}  // namespace
}  // namespace unit
