// Ownership, conversion and escaping of libxml2's texts.
#ifndef ORVEL_ORVELBOX_DESK_XML_H_
#define ORVEL_ORVELBOX_DESK_XML_H_

#include <libxml/entities.h>
#include <libxml/xmlmemory.h>

#include <memory>
#include <new>
#include <string>

namespace orvelbox {

struct FreeXmlText {
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using XmlText = std::unique_ptr<xmlChar, FreeXmlText>;

// The empty string for a null text.
inline std::string ToString(const XmlText& text) { return text ? reinterpret_cast<const char*>(text.get()) : ""; }
inline const xmlChar* ToXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// `text` escaped for element content or an attribute value.
inline std::string XmlEscaped(const std::string& text) {
  const XmlText escaped(xmlEncodeSpecialChars(nullptr, ToXml(text.c_str())));
  if (!escaped) throw std::bad_alloc();
  return ToString(escaped);
}

}  // namespace orvelbox

#endif
