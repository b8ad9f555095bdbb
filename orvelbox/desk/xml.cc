// Owning, reading and escaping texts of libxml2.
#include "orvelbox/desk/xml.h"

#include <libxml/entities.h>
#include <libxml/xmlmemory.h>

#include <new>

namespace orvelbox {

void FreeXmlText::operator()(xmlChar* text) const { xmlFree(text); }

std::string ToString(const XmlText& text) { return text ? reinterpret_cast<const char*>(text.get()) : ""; }

std::string XmlEscaped(const std::string& text) {
  const XmlText escaped(xmlEncodeSpecialChars(nullptr, ToXml(text.c_str())));
  if (!escaped) throw std::bad_alloc();
  return ToString(escaped);
}

}  // namespace orvelbox
