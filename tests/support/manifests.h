// Manifests for tests: parsed documents, and short texts for the usual kinds of package.
#ifndef TESTS_SUPPORT_MANIFESTS_H_
#define TESTS_SUPPORT_MANIFESTS_H_

#include <libxml/tree.h>

#include <memory>
#include <string>

namespace support {

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

// Parses the text; throws std::runtime_error when it is not well-formed.
Document Parse(const std::string& xml);

// A manifest with the given elements and nothing between them.
Document ManifestOf(const std::string& elements);

// An application element of the type.
std::string ApplicationElement(const std::string& name, const std::string& type);

// A metadata element.
std::string MetadataElement(const std::string& key, const std::string& value);

// The manifests of a dotnet-inhouse package, of a CoBA package, and of one that is no dotnet package.
Document DotnetManifest();
Document CobaManifest();
Document OtherManifest();

}  // namespace support

#endif
