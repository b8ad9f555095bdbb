// The two manifest walks over libxml2's reader.
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

// The current node's attribute; null when it has none of that name.
Text Attribute(const Reader& reader, const char* name) {
  return Text(xmlTextReaderGetAttribute(reader.get(), reinterpret_cast<const xmlChar*>(name)));
}

bool IsApplicationElement(std::string_view name) {
  return name == "ui-application" || name == "service-application" || name == "widget-application";
}

bool Contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

// Is the current node a metadata element that holds a CoBA entry?
bool HoldsCobaEntry(const Reader& reader, std::string_view name) {
  if (name != "metadata") return false;
  const Text key = Attribute(reader, "key");
  const Text value = Attribute(reader, "value");
  // An attribute that is not there is a null text, which no key matches.
  Metadata entry{AsChars(key.get()), AsChars(value.get())};
  return isCobaKey(&entry);
}

}  // namespace

bool isAppDotnetInhouse(xmlDocPtr doc) {
  // Never reset: one dotnet-inhouse manifest decides for the rest of the process.
  static bool isDotnetInhouseType = false;

  if (doc == nullptr) {
    LOG_ERROR("xml provided is null");
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
    LOG_DEBUG("name %s", AsChars(name));
    if (!IsApplicationElement(AsChars(name))) continue;
    const Text type = Attribute(reader, "type");
    if (type == nullptr) continue;
    if (Contains(AsChars(type.get()), "apitest")) {
      LOG_INFO("### Is sample app ###");
      break;
    }
    if (Contains(AsChars(type.get()), "dotnet-")) {
      LOG_INFO("App is dotnet-*");
      isDotnetInhouseType = true;
      break;
    }
  }
  return isDotnetInhouseType;
}

bool isAppCoBARelated(xmlDocPtr doc) {
  FunctionEntryExitTracker tracker("bool isAppCoBARelated(xmlDocPtr)", kLogSource.unit, __LINE__);
  if (doc == nullptr) {
    LOG_ERROR("xml provided is null");
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
    if (HoldsCobaEntry(reader, AsChars(name))) {
      LOG_INFO("App has CoBA metadata");
      return true;
    }
  }
  return false;
}
