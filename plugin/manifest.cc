// The two walks over a manifest with libxml2's reader.
#include "plugin/manifest.h"

#include <libxml/xmlreader.h>

#include <memory>
#include <string_view>

#include "morvath/metadata_utils.h"
#include "plugin/log_source.h"

namespace {

struct FreeReader {
  void operator()(xmlTextReaderPtr reader) const { xmlFreeTextReader(reader); }
};
using Reader = std::unique_ptr<xmlTextReader, FreeReader>;

struct FreeText {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using Text = std::unique_ptr<xmlChar, FreeText>;

const char* AsChars(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

// The limit for the expanded length of an attribute with entity references: far more than any type, key or value needs,
// and quick to build. The nesting limit below is as generous.
constexpr std::size_t kMostExpanded = 100000;
constexpr int kMostNested = 16;

// What remains of `budget` after the nodes of an attribute's value or of an entity; a reference counts as at least one
// byte. No result when the budget is exceeded, or when entities are nested deeper than `levels`.
std::optional<std::size_t> RemainingBudget(std::size_t budget, const xmlNode* nodes, int levels) {
  std::optional<std::size_t> left = budget;
  for (const xmlNode* node = nodes; node != nullptr && left; node = node->next) {
    const bool is_reference = node->type == XML_ENTITY_REF_NODE;
    const xmlEntity* entity = is_reference ? xmlGetDocEntity(node->doc, node->name) : nullptr;
    const std::size_t size = is_reference ? 1 : static_cast<std::size_t>(xmlStrlen(node->content));
    if (size > *left || (entity != nullptr && levels == 0)) return std::nullopt;
    *left -= size;
    if (entity != nullptr) left = RemainingBudget(*left, entity->children, levels - 1);
  }
  return left;
}

// Entities can refer to entities, so a few lines can expand to more text than there is memory.
bool IsEntityBomb(const Reader& reader, const xmlChar* name) {
  const xmlAttr* attribute = xmlHasNsProp(xmlTextReaderCurrentNode(reader.get()), name, nullptr);
  // The declaration of a default value can stand in for the attribute. It has no children.
  const xmlNode* node = attribute == nullptr ? nullptr : attribute->children;
  while (node != nullptr && node->type != XML_ENTITY_REF_NODE) node = node->next;
  return node != nullptr && !RemainingBudget(kMostExpanded, attribute->children, kMostNested);
}

// The current node's attribute. Null when it does not exist or must not be expanded; the latter is logged for `walk`.
Text Attribute(const Reader& reader, const char* walk, const char* attribute) {
  const auto* name = reinterpret_cast<const xmlChar*>(attribute);
  if (!IsEntityBomb(reader, name)) return Text(xmlTextReaderGetAttribute(reader.get(), name));
  LOG_ERROR_IN(walk, __LINE__, "Attribute %s is left out: its entities are too long or nested too deep", attribute);
  return nullptr;
}

bool IsApplicationElement(std::string_view name) {
  return name == "ui-application" || name == "service-application" || name == "widget-application";
}

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

// Is the current node a metadata element with a CoBA entry?
bool HoldsCobaEntry(const Reader& reader, const char* walk, std::string_view name) {
  if (name != "metadata") return false;
  const Text key = Attribute(reader, walk, "key");
  const Text value = Attribute(reader, walk, "value");
  // A missing attribute is a null text, which no key matches.
  Metadata entry{AsChars(key.get()), AsChars(value.get())};
  return isCobaKey(&entry);
}

}  // namespace

std::optional<ApplicationKind> DeclaredKind(xmlDocPtr doc) {
  const char* const walk = "isAppDotnetInhouse";
  if (doc == nullptr) {
    LOG_ERROR_IN(walk, __LINE__, LOG_TEXT_NO_MANIFEST);
    return std::nullopt;
  }
  const Reader reader(xmlReaderWalker(doc));
  if (reader == nullptr) return std::nullopt;

  while (xmlTextReaderRead(reader.get()) == 1) {
    const xmlChar* name = xmlTextReaderConstName(reader.get());
    if (name == nullptr) {
      LOG_ERROR_IN(walk, __LINE__, "Error: Failed xmlTextReaderConstName");
      break;
    }
    LOG_DEBUG_IN(walk, __LINE__, "name %s", AsChars(name));
    if (!IsApplicationElement(AsChars(name))) continue;
    const Text type = Attribute(reader, walk, "type");
    if (type == nullptr) continue;
    if (Contains(AsChars(type.get()), "apitest")) {
      LOG_INFO_IN(walk, __LINE__, LOG_TEXT_SAMPLE);
      return ApplicationKind::kSample;
    }
    if (Contains(AsChars(type.get()), "dotnet-")) {
      LOG_INFO_IN(walk, __LINE__, "App is dotnet-*");
      return ApplicationKind::kDotnet;
    }
  }
  return ApplicationKind::kOther;
}

bool isAppDotnetInhouse(xmlDocPtr doc) {
  // Never reset: after one dotnet-inhouse manifest the answer stays yes while the library is loaded.
  static bool isDotnetInhouseType = false;
  const std::optional<ApplicationKind> kind = DeclaredKind(doc);
  if (!kind) return false;
  if (*kind == ApplicationKind::kDotnet) isDotnetInhouseType = true;
  return isDotnetInhouseType;
}

bool isAppCoBARelated(xmlDocPtr doc) {
  FunctionEntryExitTracker tracker("bool isAppCoBARelated(xmlDocPtr)", kLogSource.unit, __LINE__);
  if (doc == nullptr) {
    LOG_ERROR(LOG_TEXT_NO_MANIFEST);
    return false;
  }
  const Reader reader(xmlReaderWalker(doc));
  if (reader == nullptr) return false;

  while (xmlTextReaderRead(reader.get()) == 1) {
    const xmlChar* name = xmlTextReaderConstName(reader.get());
    if (name == nullptr) {
      LOG_ERROR("Error: Failed xmlTextReaderConstName");
      break;
    }
    LOG_DEBUG("Local name %s", AsChars(name));
    if (HoldsCobaEntry(reader, __func__, AsChars(name))) {
      LOG_INFO("App has CoBA metadata");
      return true;
    }
  }
  return false;
}
