// The walk over a manifest: is it dotnet-inhouse? And what it has in common with the search for CoBA entries.
#include "plugin/manifest.h"

#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>

#include "tests/support/interposed.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

// A document whose second element has no name, which a parser never produces.
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

// Counts the memory blocks that libxml2 allocates during its lifetime.
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

enum class Answer { kDotnet, kSample, kOther };

struct Row {
  const char* what;
  std::string elements;  // of the manifest
  Texts nodes;           // after the manifest's own node, in the order of the walk
  Answer answer;
};

std::string Ui(const std::string& type) { return ApplicationElement("ui-application", type); }

const Row kDotnetRows[] = {
    {"a ui application", Ui("dotnet-inhouse"), {"ui-application"}, Answer::kDotnet},
    {"a service application",
     ApplicationElement("service-application", "dotnet-x"),
     {"service-application"},
     Answer::kDotnet},
    {"a widget application",
     ApplicationElement("widget-application", "dotnet-"),
     {"widget-application"},
     Answer::kDotnet},
    {"the text within the type", Ui("x-dotnet-y"), {"ui-application"}, Answer::kDotnet},
    {"the type without its dash", Ui("dotnet"), {"ui-application"}, Answer::kOther},
    {"other letter case", Ui("Dotnet-inhouse"), {"ui-application"}, Answer::kOther},
    {"an empty type", Ui(""), {"ui-application"}, Answer::kOther},
    {"a sample app", Ui("apitest"), {"ui-application"}, Answer::kSample},
    {"a dotnet sample app", Ui("dotnet-apitest"), {"ui-application"}, Answer::kSample},
    {"a sample app before a dotnet one", Ui("apitests") + Ui("dotnet-x"), {"ui-application"}, Answer::kSample},
    {"a dotnet app before a sample one", Ui("dotnet-x") + Ui("apitest"), {"ui-application"}, Answer::kDotnet},
    {"no type before a dotnet one",
     "<service-application/>" + Ui("dotnet-x"),
     {"service-application", "ui-application"},
     Answer::kDotnet},
    {"another type before a dotnet one",
     Ui("capp") + Ui("dotnet-x"),
     {"ui-application", "ui-application"},
     Answer::kDotnet},
    {"another attribute", "<ui-application Type='dotnet-x' kind='dotnet-x'/>", {"ui-application"}, Answer::kOther},
    {"a longer name", ApplicationElement("ui-applications", "dotnet-x"), {"ui-applications"}, Answer::kOther},
    {"a shorter name", ApplicationElement("ui-applicatio", "dotnet-x"), {"ui-applicatio"}, Answer::kOther},
    {"a name in other letter case",
     ApplicationElement("UI-application", "dotnet-x"),
     {"UI-application"},
     Answer::kOther},
    {"a qualified name", "<a:ui-application xmlns:a='u' type='dotnet-x'/>", {"a:ui-application"}, Answer::kOther},
    {"nodes of every kind and end tags",
     " <!--c--><?p i?><label>x</label>" + Ui("dotnet-x"),
     {"#text", "#comment", "p", "label", "#text", "label", "ui-application"},
     Answer::kDotnet},
    {"an application deep inside",
     "<a><b>" + Ui("dotnet-x") + "</b></a>",
     {"a", "b", "ui-application"},
     Answer::kDotnet},
};

Steps DecisionLines(Answer answer) {
  const Source walk = Plugin("isAppDotnetInhouse");
  if (answer == Answer::kOther) return Names({"manifest"});  // the end tag
  return answer == Answer::kDotnet ? walk.Info("App is dotnet-*") : walk.Info("### Is sample app ###");
}

TEST(Manifest, the_first_application_element_that_decides_makes_it_dotnet_inhouse_or_not) {
  for (const Row& row : kDotnetRows) {
    Fresh([&](Platform& platform) {
      EXPECT_EQ(row.answer == Answer::kDotnet, isAppDotnetInhouse(ManifestOf(row.elements).get())) << row.what;
      EXPECT_TRUE(Holds(platform, {Names({"manifest"}), Names(row.nodes), DecisionLines(row.answer)})) << row.what;
    });
  }
}

FRESH_TEST(Manifest, the_root_element_may_be_the_application_itself) {
  EXPECT_TRUE(isAppDotnetInhouse(Parse("<ui-application type='dotnet-inhouse'/>").get()));
  EXPECT_TRUE(Holds(platform, {Names({"ui-application"}), DecisionLines(Answer::kDotnet)}));
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
  EXPECT_TRUE(isAppDotnetInhouse(manifest.get()));  // still true because of the earlier manifest
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
