// Manifests made to exhaust or mislead their reader. The package manager parses them; here a tolerant parser makes the
// documents.
#include <libxml/parser.h>
#include <libxml/xmlIO.h>
#include <unistd.h>

#include <algorithm>

#include "plugin/hooks.h"
#include "plugin/manifest.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

const std::string kDotnet = ApplicationElement("ui-application", "dotnet-inhouse");
const std::string kCoba = MetadataElement(support::kCobaKey, "true");

Document ParseGenerously(const std::string& xml) {
  const int options = XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  return Document(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "manifest", nullptr, options));
}

const xmlChar* ToXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

FRESH_TEST(HostileManifests, elements_nested_without_end_are_walked) {
  const Document document = support::ManifestOf("");
  xmlNode* node = xmlDocGetRootElement(document.get());
  for (int i = 0; i < 200000; ++i) node = xmlNewChild(node, nullptr, ToXml("deep"), nullptr);
  xmlNewProp(xmlNewChild(node, nullptr, ToXml("widget-application"), nullptr), ToXml("type"), ToXml("dotnet-x"));
  xmlNode* metadata = xmlNewChild(node, nullptr, ToXml("metadata"), nullptr);
  xmlNewProp(metadata, ToXml("key"), ToXml(support::kCobaKey));
  xmlNewProp(metadata, ToXml("value"), ToXml("true"));
  EXPECT_TRUE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
}

// A document type in which the entity "bomb" expands to 10 to the power of `levels` bytes.
std::string Bomb(int levels) {
  std::string text = "<!DOCTYPE manifest [<!ENTITY e0 'x'>";
  for (int i = 1; i <= levels; ++i) {
    text += "<!ENTITY e" + std::to_string(i) + " '";
    for (int k = 0; k < 10; ++k) text += "&e" + std::to_string(i - 1) + ";";
    text += "'>";
  }
  return text + "<!ENTITY bomb '&e" + std::to_string(levels) + ";'>]>";
}

FRESH_TEST(HostileManifests, an_entity_bomb_in_the_text_is_not_set_off) {
  alarm(20);
  const Document document =
      ParseGenerously(Bomb(6) + "<manifest>&bomb;<a>&bomb;</a>" + kCoba + kDotnet + "</manifest>");
  ASSERT_NE(nullptr, document);
  EXPECT_TRUE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
}

// Adds an element whose attribute is a reference to the entity. Builds it manually, because a parser would expand and
// check the entity.
void AddElementOfEntity(xmlDoc* document, const char* element, const char* attribute, const char* entity) {
  xmlNode* node = xmlNewChild(xmlDocGetRootElement(document), nullptr, ToXml(element), nullptr);
  xmlAttr* value = xmlNewProp(node, ToXml(attribute), nullptr);
  value->children = xmlStringGetNodeList(document, ToXml(("&" + std::string(entity) + ";").c_str()));
  value->last = value->children;
  value->children->parent = reinterpret_cast<xmlNode*>(value);
}

FRESH_TEST(HostileManifests, an_entity_bomb_in_an_attribute_is_not_set_off_and_the_walk_goes_on) {
  alarm(20);
  const Document document = ParseGenerously(Bomb(9) + "<manifest/>");
  ASSERT_NE(nullptr, document);
  AddElementOfEntity(document.get(), "ui-application", "type", "bomb");
  AddElementOfEntity(document.get(), "metadata", "key", "bomb");
  xmlNewProp(xmlGetLastChild(xmlDocGetRootElement(document.get())), ToXml("value"), ToXml("true"));
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  EXPECT_FALSE(isAppCoBARelated(document.get()));
  const auto messages = platform.Messages();
  EXPECT_EQ(1, std::count(messages.begin(), messages.end(),
                          "Attribute type is left out: its entities are too long or nested too deep"));
  const Document last = ParseGenerously("<manifest>" + kDotnet + kCoba + "</manifest>");
  xmlAddChild(xmlDocGetRootElement(document.get()),
              xmlDocCopyNode(xmlDocGetRootElement(last.get()), document.get(), 1));
  EXPECT_TRUE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
}

FRESH_TEST(HostileManifests, an_attribute_made_of_references_without_end_is_not_put_together) {
  alarm(20);
  std::string references;
  while (references.size() < 600000) references += "&a;";
  const Document document = support::Parse("<!DOCTYPE manifest [<!ENTITY a 'x'>]><manifest><ui-application type='" +
                                           references + "dotnet-'/>" + kCoba + "</manifest>");
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
}

FRESH_TEST(HostileManifests, entities_that_are_missing_or_stand_for_themselves_are_no_text) {
  alarm(20);
  const Document document = ParseGenerously("<!DOCTYPE manifest [<!ENTITY loop 'x'>]><manifest/>");
  xmlEntity* loop = xmlGetDocEntity(document.get(), ToXml("loop"));
  ASSERT_NE(nullptr, loop);
  AddElementOfEntity(document.get(), "ui-application", "type", "missing");
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  AddElementOfEntity(document.get(), "ui-application", "type", "loop");
  xmlFreeNodeList(loop->children);
  loop->children = xmlNewReference(document.get(), ToXml("loop"));
  loop->last = loop->children;
  loop->children->parent = reinterpret_cast<xmlNode*>(loop);
  loop->owner = 1;
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
}

// The resources that libxml2 was asked to load.
std::vector<std::string>& Fetched() {
  static std::vector<std::string> fetched;
  return fetched;
}

xmlParserInputPtr RefuseEntity(const char* url, const char* id, xmlParserCtxtPtr) {
  Fetched().push_back(url != nullptr ? url : id);
  return nullptr;
}

int NoteFile(const char* name) {
  Fetched().push_back(name);
  return 0;
}

FRESH_TEST(HostileManifests, external_entities_are_never_loaded) {
  const support::TempDir directory;
  WriteFile(directory / "secret", "dotnet-");
  const std::string url = "file://" + (directory / "secret");
  const Document document = ParseGenerously(
      "<!DOCTYPE manifest SYSTEM '" + url + "' [<!ENTITY secret SYSTEM '" + url + "'><!ENTITY % more SYSTEM '" + url +
      "'><!NOTATION n SYSTEM '" + url + "'><!ENTITY raw SYSTEM '" + url + "' NDATA n>]><?xml-stylesheet href='" + url +
      "'?><manifest xmlns:xi='http://www.w3.org/2001/XInclude' "
      "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='a " +
      url + "'><xi:include href='" + url + "'/>&secret;<x>&secret;</x><ui-application type='raw'/>" + kCoba +
      "</manifest>");
  ASSERT_NE(nullptr, document);
  AddElementOfEntity(document.get(), "ui-application", "type", "secret");
  xmlSetExternalEntityLoader(RefuseEntity);
  ASSERT_LE(0, xmlRegisterInputCallbacks(
                   NoteFile, [](const char*) { return static_cast<void*>(nullptr); },
                   [](void*, char*, int) { return -1; }, [](void*) { return 0; }));
  EXPECT_FALSE(isAppDotnetInhouse(document.get()));
  EXPECT_TRUE(isAppCoBARelated(document.get()));
  EXPECT_EQ(std::vector<std::string>{}, Fetched());
  xmlFreeDoc(xmlReadFile(url.c_str(), nullptr, XML_PARSE_NOERROR));
  EXPECT_EQ(std::vector<std::string>{url}, Fetched()) << "what is fetched is noticed";
}

}  // namespace
}  // namespace hostile
