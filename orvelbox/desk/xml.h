// Texts of libxml2: owned, read and escaped.
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

// Empty where there is none.
inline std::string ToString(const XmlText& text) { return text ? reinterpret_cast<const char*>(text.get()) : ""; }
inline const xmlChar* ToXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// `text` as it is written in the text or an attribute of a document.
inline std::string XmlEscaped(const std::string& text) {
  const XmlText escaped(xmlEncodeSpecialChars(nullptr, ToXml(text.c_str())));
  if (!escaped) throw std::bad_alloc();
  return ToString(escaped);
}

}  // namespace orvelbox

#endif
