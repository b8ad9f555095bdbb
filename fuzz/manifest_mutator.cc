// Changes manifests as trees: elements, attributes and values out of the vocabulary that the readers look for. Every
// fourth time, and where the bytes are no document, libFuzzer changes the bytes instead.
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/mutation.h"

namespace {

using fuzz::Chance;

constexpr const char* kElements[] = {"manifest", "ui-application", "service-application", "widget-application",
                                     "metadata", "privileges",     "privilege",           "label"};
constexpr const char* kAttributes[] = {"package", "version", "type", "mainapp", "appid", "exec", "key", "value"};
constexpr const char* kDeveloperKeys = "http://developer.orvel.example/orvel/metadata/support-";
const std::string kValues[] = {"dotnet-inhouse",
                               "dotnet-",
                               "xdotnet-apitest",
                               "apitest",
                               "capp",
                               "true",
                               "True",
                               "",
                               "p",
                               "q",
                               "one",
                               "two",
                               ".p",
                               "a/b",
                               "a:b",
                               "a[b]",
                               "\xc2\x85",
                               "/usr/bin/x",
                               std::string(255, 'i'),
                               std::string(256, 'i'),
                               std::string(kDeveloperKeys) + "fs-external-component",
                               std::string(kDeveloperKeys) + "view-plugin",
                               std::string(kDeveloperKeys) + "view-plugin-page",
                               std::string(kDeveloperKeys) + "bpi"};
constexpr const char* kTypes[] = {"<!DOCTYPE manifest [<!ENTITY a \"dotnet-\"><!ENTITY b \"&a;&a;\">]>",
                                  "<!DOCTYPE manifest [<!ATTLIST ui-application type CDATA \"dotnet-\">]>",
                                  "<!DOCTYPE manifest [<!ATTLIST metadata value CDATA \"true\">]>",
                                  "<!DOCTYPE manifest>"};

const xmlChar* ToXml(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

Document Parse(const std::string& text) {
  constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  return Document(xmlReadMemory(text.data(), static_cast<int>(text.size()), "manifest", nullptr, kOptions));
}

// Without a declaration, which would take most of a short input.
std::string TextOf(xmlDoc* document) {
  xmlBuffer* const buffer = xmlBufferCreate();
  xmlSaveCtxt* const save = xmlSaveToBuffer(buffer, "UTF-8", XML_SAVE_NO_DECL | XML_SAVE_AS_XML);
  xmlSaveDoc(save, document);
  xmlSaveClose(save);
  std::string text(reinterpret_cast<const char*>(xmlBufferContent(buffer)));
  xmlBufferFree(buffer);
  return text;
}

void Collect(xmlNode* node, std::vector<xmlNode*>& elements) {
  for (; node != nullptr; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    elements.push_back(node);
    Collect(node->children, elements);
  }
}

// Changes to one document.
class Gardener {
 public:
  Gardener(xmlDoc* document, Chance& chance) : document_(document), chance_(chance) {}

  void Change() {
    elements_.clear();
    Collect(xmlDocGetRootElement(document_), elements_);
    xmlNode* const element = chance_.Of(elements_);
    switch (chance_.Below(8)) {
      case 0:
        return AddChild(element);
      case 1:
      case 2:
        return SetAttribute(element);
      case 3:
        return ChangeAttribute(element);
      case 4:
        return Repeat(element);
      case 5:
        return Remove(element);
      case 6:
        return Rename(element);
      default:
        return AddContent(element);
    }
  }

 private:
  void AddChild(xmlNode* parent) {
    xmlNode* const child = xmlNewChild(parent, nullptr, ToXml(chance_.Of(kElements)), nullptr);
    for (std::size_t left = chance_.Below(4); left > 0; --left) SetAttribute(child);
  }

  void SetAttribute(xmlNode* element) {
    xmlSetProp(element, ToXml(chance_.Of(kAttributes)), ToXml(chance_.Of(kValues)));
  }

  // Removes one, or changes its bytes as far as they are printable.
  void ChangeAttribute(xmlNode* element) {
    const std::string name = chance_.Of(kAttributes);
    xmlChar* const value = xmlGetNoNsProp(element, ToXml(name));
    if (value == nullptr) return SetAttribute(element);
    std::string text = reinterpret_cast<const char*>(value);
    xmlFree(value);
    if (chance_.OneIn(3)) {
      xmlUnsetProp(element, ToXml(name));
      return;
    }
    text = fuzz::MutatedBytes(text, text.size() + 8);
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }), text.end());
    xmlSetProp(element, ToXml(name), ToXml(text));
  }

  // Copies the element with its content, or moves it, to another one.
  void Repeat(xmlNode* element) {
    xmlNode* const place = chance_.Of(elements_);
    xmlNode* const copy = xmlCopyNode(element, 1);
    if (chance_.OneIn(2)) Remove(element);
    elements_.clear();
    Collect(xmlDocGetRootElement(document_), elements_);
    const bool there = std::find(elements_.begin(), elements_.end(), place) != elements_.end();
    xmlAddChild(there ? place : xmlDocGetRootElement(document_), copy);
  }

  void Remove(xmlNode* element) {
    if (element == xmlDocGetRootElement(document_)) return;
    xmlUnlinkNode(element);
    xmlFreeNode(element);
  }

  // Gives the element another name, or a prefix.
  void Rename(xmlNode* element) {
    if (chance_.OneIn(2)) {
      xmlNodeSetName(element, ToXml(chance_.Of(kElements)));
    } else {
      xmlNs* const name_space = xmlSearchNs(document_, element, ToXml("a"));
      xmlSetNs(element, name_space != nullptr ? name_space : xmlNewNs(element, ToXml("b"), ToXml("a")));
    }
  }

  void AddContent(xmlNode* element) {
    const std::string text = chance_.Of(kValues);
    const auto length = static_cast<int>(text.size());
    xmlNode* const kinds[] = {xmlNewDocText(document_, ToXml(text)), xmlNewCDataBlock(document_, ToXml(text), length),
                              xmlNewDocComment(document_, ToXml(text)), xmlNewDocPI(document_, ToXml("a"), ToXml(text)),
                              xmlNewReference(document_, ToXml("a"))};
    // Without declarations, an entity makes a document unreadable.
    const std::size_t kept = chance_.Below(std::size(kinds) - (document_->intSubset == nullptr ? 1 : 0));
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
      if (i == kept) {
        xmlAddChild(element, kinds[i]);
      } else {
        xmlFreeNode(kinds[i]);
      }
    }
  }

  xmlDoc* document_;
  Chance& chance_;
  std::vector<xmlNode*> elements_;
};

// Empty when the text is no document.
std::string Changed(const std::string& text, Chance& chance) {
  const Document document = Parse(text);
  if (document == nullptr || xmlDocGetRootElement(document.get()) == nullptr) return "";
  Gardener gardener(document.get(), chance);
  for (std::size_t left = 1 + chance.Below(3); left > 0; --left) gardener.Change();
  const std::string type = document->intSubset == nullptr && chance.OneIn(16) ? chance.Of(kTypes) : "";
  return type + TextOf(document.get());
}

}  // namespace

// The document may begin behind one byte, which says how to parse it.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max_size,
                                               unsigned int seed) {
  Chance chance(seed);
  if (!chance.OneIn(4)) {
    const std::size_t begin = size > 0 && data[0] != '<' ? 1 : 0;
    const std::string text = Changed({data + begin, data + size}, chance);
    xmlResetLastError();
    if (!text.empty() && begin + text.size() <= max_size) {
      std::copy(text.begin(), text.end(), data + begin);
      return begin + text.size();
    }
  }
  return LLVMFuzzerMutate(data, size, max_size);
}
