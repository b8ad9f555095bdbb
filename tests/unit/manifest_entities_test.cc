// The limits for expanding the entities of a manifest's attribute.
#include <libxml/parser.h>

#include "plugin/manifest.h"
#include "tests/support/unit_case.h"

namespace unit {
namespace {

constexpr const char* kLeftOut = "Attribute %s is left out: its entities are too long or nested too deep";
constexpr std::size_t kMost = 100000;  // bytes; a reference counts as one

Document WithEntities(const std::string& entities, const std::string& elements) {
  return Parse("<!DOCTYPE manifest [" + entities + "]><manifest>" + elements + "</manifest>");
}

Document WithType(const std::string& entities, const std::string& type) {
  return WithEntities(entities, ApplicationElement("ui-application", type));
}

std::string Entity(const std::string& name, const std::string& text) { return "<!ENTITY " + name + " '" + text + "'>"; }

std::string Filler(std::size_t size) { return std::string(size, 'x'); }

void ExpectRead(const Document& document) {
  Fresh([&](Platform& platform) {
    EXPECT_TRUE(isAppDotnetInhouse(document.get()));
    EXPECT_EQ("App is dotnet-*", platform.Messages().back());
  });
}

void ExpectRefused(const Document& document) {
  Fresh([&](Platform& platform) {
    EXPECT_FALSE(isAppDotnetInhouse(document.get()));
    EXPECT_TRUE(Holds(platform, {Plugin("isAppDotnetInhouse").Debug("name %s", "manifest"),
                                 Plugin("isAppDotnetInhouse").Debug("name %s", "manifest"),
                                 Plugin("isAppDotnetInhouse").Debug("name %s", "ui-application"),
                                 Plugin("isAppDotnetInhouse").Error(kLeftOut, "type"),
                                 Plugin("isAppDotnetInhouse").Debug("name %s", "manifest")}));
  });
}

TEST(ManifestEntities, those_of_an_attribute_are_expanded) {
  ExpectRead(WithType(Entity("net", "dotnet-"), "&#97; &net;inhouse"));
  ExpectRead(WithType(Entity("net", "net-") + Entity("whole", "dot&net;"), "&whole;inhouse"));
}

TEST(ManifestEntities, an_attribute_may_stand_for_a_hundred_thousand_bytes_and_no_more) {
  const std::string rest = "dotnet-";
  const std::size_t length = kMost - rest.size() - 1;
  ExpectRead(WithType(Entity("a", Filler(length)), "&a;" + rest));
  ExpectRefused(WithType(Entity("a", Filler(length + 1)), "&a;" + rest));
}

TEST(ManifestEntities, a_reference_counts_alone_and_behind_text) {
  const std::string too_much = Entity("a", Filler(kMost));
  ExpectRefused(WithType(too_much, "&a;"));
  ExpectRefused(WithType(too_much, "x&a;"));
}

FRESH_TEST(ManifestEntities, an_attribute_that_never_got_a_value_is_no_trouble) {
  const Document document = ManifestOf("<ui-application/>");
  xmlNode* const application = xmlDocGetRootElement(document.get())->children;
  xmlNewProp(application, reinterpret_cast<const xmlChar*>("type"), nullptr);
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
}

TEST(ManifestEntities, entities_of_entities_count_as_often_as_they_are_named) {
  const std::string rest = "dotnet-";
  const std::size_t length = (kMost - rest.size() - 3) / 2;  // the reference to b, and two to a
  ExpectRead(WithType(Entity("a", Filler(length)) + Entity("b", "&a;&a;"), "&b;" + rest));
  ExpectRefused(WithType(Entity("a", Filler(length + 1)) + Entity("b", "&a;&a;"), "&b;" + rest));
}

// A type that expands to "dotnet-" through that many nested entities.
Document WithNestedEntities(int count) {
  std::string entities = Entity("e1", "dotnet-");
  for (int entity = 2; entity <= count; ++entity) {
    entities += Entity("e" + std::to_string(entity), "&e" + std::to_string(entity - 1) + ";");
  }
  const std::string text = "<!DOCTYPE manifest [" + entities + "]><manifest><ui-application type=\"&e" +
                           std::to_string(count) + ";\"/></manifest>";
  // The caller may have removed the parser's own limits.
  return Document(
      xmlReadMemory(text.data(), static_cast<int>(text.size()), "manifest", nullptr, XML_PARSE_NONET | XML_PARSE_HUGE));
}

TEST(ManifestEntities, entities_may_be_nested_so_deep_and_no_deeper) {
  ExpectRead(WithNestedEntities(16));
  ExpectRefused(WithNestedEntities(17));
}

FRESH_TEST(ManifestEntities, both_walks_tell_of_an_attribute_that_is_left_out) {
  const std::string too_much = Entity("a", Filler(kMost));
  const Document document = WithEntities(too_much, "<metadata key='&a;' value='true'/><metadata key='k' value='&a;'/>");
  EXPECT_FALSE(isAppCoBARelated(document.get()));
  const Source walk = Plugin("isAppCoBARelated");
  EXPECT_TRUE(
      Holds(platform, TracedPlugin("bool isAppCoBARelated(xmlDocPtr)",
                                   {walk.Debug("Local name %s", "manifest"), walk.Debug("Local name %s", "manifest"),
                                    walk.Debug("Local name %s", "metadata"), walk.Error(kLeftOut, "key"),
                                    walk.Debug("Local name %s", "metadata"), walk.Error(kLeftOut, "value"),
                                    walk.Debug("Local name %s", "manifest")})));
}

TEST(ManifestEntities, text_without_entities_may_be_longer) {
  ExpectRead(WithType("", Filler(2 * kMost) + "dotnet-"));
  Fresh([](Platform& platform) {
    const Document document = WithType("", Filler(kMost));
    xmlAttr* const type = xmlDocGetRootElement(document.get())->children->properties;
    for (const std::string& text : {Filler(kMost), std::string("dotnet-")}) {
      xmlNode* const node = xmlNewDocText(document.get(), reinterpret_cast<const xmlChar*>(text.c_str()));
      node->parent = type->last->parent;
      node->prev = type->last;
      type->last = type->last->next = node;
    }
    EXPECT_TRUE(isAppDotnetInhouse(document.get()));
    EXPECT_EQ("App is dotnet-*", platform.Messages().back());
  });
}

TEST(ManifestEntities, an_empty_attribute_and_a_default_value_are_no_trouble) {
  Fresh([](Platform&) { EXPECT_FALSE(isAppDotnetInhouse(WithType("", "").get())); });
  ExpectRead(WithEntities("<!ATTLIST ui-application type CDATA 'dotnet-'>", "<ui-application/>"));
}

}  // namespace
}  // namespace unit
