// Manifests for tests.
#include "tests/support/manifests.h"

#include <libxml/parser.h>

#include <stdexcept>

#include "tests/support/uris.h"

namespace support {

Document Parse(const std::string& xml) {
  Document document(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), "manifest", nullptr, 0));
  if (document == nullptr) throw std::runtime_error("not well-formed: " + xml);
  return document;
}

Document ManifestOf(const std::string& elements) { return Parse("<manifest>" + elements + "</manifest>"); }

std::string ApplicationElement(const std::string& name, const std::string& type) {
  return "<" + name + " type=\"" + type + "\"/>";
}

std::string MetadataElement(const std::string& key, const std::string& value) {
  return "<metadata key=\"" + key + "\" value=\"" + value + "\"/>";
}

Document DotnetManifest() { return ManifestOf(ApplicationElement("ui-application", "dotnet-inhouse")); }

Document CobaManifest() {
  return ManifestOf(ApplicationElement("ui-application", "dotnet-inhouse") + MetadataElement(kCobaKey, "true"));
}

Document OtherManifest() { return ManifestOf(ApplicationElement("ui-application", "capp")); }

}  // namespace support
