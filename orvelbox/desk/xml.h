// Texts of libxml2.
#ifndef ORVEL_ORVELBOX_DESK_XML_H_
#define ORVEL_ORVELBOX_DESK_XML_H_

#include <libxml/xmlstring.h>

#include <memory>
#include <string>

namespace orvelbox {

struct FreeXmlText {
  void operator()(xmlChar* text) const;
};
using XmlText = std::unique_ptr<xmlChar, FreeXmlText>;

// Empty where there is none.
std::string ToString(const XmlText& text);
inline const xmlChar* ToXml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// `text` as it is written in the text or an attribute of a document.
std::string XmlEscaped(const std::string& text);

}  // namespace orvelbox

#endif
