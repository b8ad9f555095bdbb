// Reads the manifest of a package directory. What is registered or copied because of it is decided elsewhere.
//
// A package is a directory, or an archive of it (archive.h), with an `orvel-manifest.xml` in its root:
//
//   <manifest package="org.example.app" version="1.2.0" type="opk" mainapp="org.example.app.main">
//     <ui-application appid="org.example.app.main" exec="App.dll" type="dotnet-inhouse">
//       <metadata key="KEY" value="VALUE"/>
//     </ui-application>
//     <privileges>
//       <privilege>URI</privilege>
//     </privileges>
//   </manifest>
//
// - `package` names the package, and its directory on the device: at most 255 bytes, no "/", no control character, no
//   "." in front (those names are orvelbox's own), and none of ":", "[", "]", which structure the cache files.
// - `version` is free text, empty when absent; `type` is "opk" when absent; `mainapp` names one of the applications,
//   the first one when absent.
// - Applications are the children "ui-application", "service-application" and "widget-application", each with an
//   `appid` that no other application of the device has, an `exec` relative to the package's "bin/" (an absolute
//   one stays as it is) and a `type`, both optional. A package without applications is allowed.
// - An absent attribute of "metadata" reads as the empty text. Blanks around a privilege's URI are dropped, repeats
//   are kept, and a privilege without text is ignored.
// - Names count as written, without a namespace prefix, because the plug-in compares them so. Other elements and
//   attributes are left to whoever knows them.
// - The document may have a DOCTYPE, which is never loaded, but may not declare entities. It has at most 1 MiB.
#ifndef ORVEL_ORVELBOX_PACKAGE_MANIFEST_H_
#define ORVEL_ORVELBOX_PACKAGE_MANIFEST_H_

#include <libxml/tree.h>

#include <filesystem>
#include <memory>
#include <string>

#include "orvelbox/package/archive.h"
#include "platform/host/package_store.h"

namespace orvelbox {

inline constexpr const char* kManifestName = "orvel-manifest.xml";

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using XmlDocument = std::unique_ptr<xmlDoc, FreeDocument>;

struct Manifest {
  host::Package package;  // not placed yet: no root, `exec` as written
  XmlDocument document;   // never null; the hooks read it
};

// Reads the manifest in `package_directory`. Throws host::DeviceError, naming the manifest (with the line, where the
// XML is wrong) and the way out. Nothing is fetched or read but that one file, and nothing is printed.
Manifest ReadManifest(const std::filesystem::path& package_directory);
// The same for the manifest in an archive.
Manifest ReadManifest(const Archive& archive);

// What `document` (only read) says, checked. Throws host::DeviceError with `file` as the name of the manifest.
host::Package DescribePackage(const xmlDoc* document, const std::string& file);

// The package as it is once its tree stands at `root` on the device.
host::Package PlacedAt(host::Package package, const std::string& root);

}  // namespace orvelbox

#endif
