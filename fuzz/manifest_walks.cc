// The two manifest walks on any document that a parser makes of the input, compared with a plain search of the tree.
// The first byte selects how the rest is parsed.
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>
#include <string>

#include "fuzz/input.h"
#include "morvath/metadata_utils.h"
#include "plugin/manifest.h"
#include "tests/doubles/platform.h"

namespace {

using fuzz::Require;

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

// True while nothing may be loaded.
bool walking = false;

xmlParserInputPtr FetchNothing(const char*, const char*, xmlParserCtxtPtr) {
  Require(!walking, "a walk fetches nothing");
  return nullptr;
}

void SayNothing(void*, const char*, ...) {}

std::string Text(const xmlChar* text) { return text == nullptr ? "" : reinterpret_cast<const char*>(text); }

std::string NameOf(const xmlNode* element) {
  const bool prefixed = element->ns != nullptr && element->ns->prefix != nullptr;
  return (prefixed ? Text(element->ns->prefix) + ":" : "") + Text(element->name);
}

struct Value {
  bool there;
  std::string text;
};

Value AttributeOf(xmlNode* element, const char* name) {
  xmlChar* text = xmlGetNoNsProp(element, reinterpret_cast<const xmlChar*>(name));
  const Value value{text != nullptr, Text(text)};
  xmlFree(text);
  return value;
}

bool Holds(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

enum class Kind { kUndecided, kSample, kDotnet };

Kind JudgeApplication(xmlNode* element) {
  const std::string name = NameOf(element);
  if (name != "ui-application" && name != "service-application" && name != "widget-application") {
    return Kind::kUndecided;
  }
  const Value type = AttributeOf(element, "type");
  if (Holds(type.text, "apitest")) return Kind::kSample;
  return Holds(type.text, "dotnet-") ? Kind::kDotnet : Kind::kUndecided;
}

bool IsCobaElement(xmlNode* element) {
  if (NameOf(element) != "metadata") return false;
  const Value key = AttributeOf(element, "key");
  const Value value = AttributeOf(element, "value");
  if (!key.there || value.text != "true") return false;
  return key.text == MetadataKey::coBA || key.text == MetadataKey::viewPlugin ||
         key.text == MetadataKey::viewPluginPage || key.text == MetadataKey::bpi;
}

// What the elements from `node` on, with their content, declare.
struct Findings {
  Kind kind = Kind::kUndecided;
  bool coba = false;
  bool ended = false;  // at a node without a name, such as a broken document type
};

void Search(xmlNode* node, Findings& findings) {
  for (; node != nullptr && !findings.ended; node = node->next) {
    findings.ended = node->type == XML_DTD_NODE && node->name == nullptr;
    if (node->type != XML_ELEMENT_NODE) continue;
    if (findings.kind == Kind::kUndecided) findings.kind = JudgeApplication(node);
    findings.coba = findings.coba || IsCobaElement(node);
    Search(node->children, findings);
  }
}

std::string Dump(xmlDoc* document) {
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(document, &text, &size);
  std::string dump(reinterpret_cast<const char*>(text), text == nullptr ? 0 : static_cast<std::size_t>(size));
  xmlFree(text);
  return dump;
}

Document Parse(std::size_t choice, const std::string& text) {
  constexpr int kChoices[] = {XML_PARSE_NOENT,   XML_PARSE_DTDATTR,  XML_PARSE_RECOVER, XML_PARSE_NOCDATA,
                              XML_PARSE_NSCLEAN, XML_PARSE_NOBLANKS, XML_PARSE_OLD10,   XML_PARSE_COMPACT};
  int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  for (std::size_t i = 0; i < 8; ++i) options |= (choice >> i & 1) != 0 ? kChoices[i] : 0;
  return Document(xmlReadMemory(text.data(), static_cast<int>(text.size()), "manifest", nullptr, options));
}

// What the walk for a dotnet application logs. After the first true answer, the answer itself is always true.
Kind KindToldOf(xmlDoc* document, bool& answer) {
  Kind kind = Kind::kUndecided;
  doubles::Current().on_event = [&kind](const doubles::Event& event) {
    if (Holds(event.log.format, "App is dotnet-*")) kind = Kind::kDotnet;
    if (Holds(event.log.format, "### Is sample app ###")) kind = Kind::kSample;
  };
  answer = isAppDotnetInhouse(document);
  doubles::Current().on_event = nullptr;
  return kind;
}

void CheckWalks(xmlDoc* document) {
  static bool seen_dotnet = false;  // like the walk's own: never reset
  Findings findings;
  Search(document->children, findings);
  const std::string before = Dump(document);
  walking = true;
  seen_dotnet = seen_dotnet || findings.kind == Kind::kDotnet;
  bool answer = false;
  Require(KindToldOf(document, answer) == findings.kind, "the first application that decides is the one that counts");
  Require(answer == seen_dotnet, "one dotnet application is enough for the rest of the process");
  Require(isAppCoBARelated(document) == findings.coba, "any CoBA entry makes a CoBA package");
  walking = false;
  fuzz::RequireEqual(before, Dump(document), "a walk changes nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  doubles::Current().keeps_journal = false;
  xmlSetExternalEntityLoader(FetchNothing);
  xmlSetGenericErrorFunc(nullptr, SayNothing);
  fuzz::Input input(data, size);
  const std::size_t choice = input.Byte();
  const Document document = Parse(choice, input.Rest());
  if (document != nullptr) CheckWalks(document.get());
  xmlResetLastError();
  return 0;
}
