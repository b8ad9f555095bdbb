// The reader of package manifests: any file is either refused with one line that names it, or describes a package that
// can be installed.
#include <libxml/xmlerror.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "fuzz/input.h"
#include "fuzz/memory_directory.h"
#include "orvelbox/package/manifest.h"
#include "platform/host/device.h"

namespace {

namespace fs = std::filesystem;

using fuzz::Require;

bool HasControlCharacter(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20 || byte == 0x7f) return true;
    if (byte == 0xc2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xa0) return true;
  }
  return false;
}

void CheckId(const std::string& id) {
  Require(!id.empty() && id.size() <= 255, "an id is of a length that a directory's name can have");
  Require(id.find_first_of("/:[]") == std::string::npos && id[0] != '.', "an id stays inside of where it is put");
  Require(!HasControlCharacter(id), "an id can be shown");
}

void CheckPackage(const host::Package& package) {
  CheckId(package.id);
  std::set<std::string> ids;
  for (const host::Application& application : package.applications) {
    Require(!application.id.empty() && !HasControlCharacter(application.id), "an application's id can be shown");
    Require(ids.insert(application.id).second, "applications have ids of their own");
  }
  Require(ids.empty() ? package.main_app_id.empty() : ids.count(package.main_app_id) == 1,
          "the main application is one of them");
  for (const std::string& privilege : package.privileges) Require(!privilege.empty(), "a privilege has a name");
  const host::Package placed = orvelbox::PlacedAt(package, "/root");
  for (const host::Application& application : placed.applications) {
    Require(application.exec.empty() || application.exec[0] == '/', "a placed application has a whole path");
  }
}

// The path of the manifest.
const fs::path& Place() {
  static const fuzz::MemoryDirectory directory;
  return directory.path();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  Place();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fs::path file = Place() / orvelbox::kManifestName;
  std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  try {
    const orvelbox::Manifest manifest = orvelbox::ReadManifest(Place());
    Require(manifest.document != nullptr, "what was read can be handed on");
    CheckPackage(manifest.package);
  } catch (const host::DeviceError& error) {
    const std::string line = error.what();
    Require(line.rfind(file.string() + ": ", 0) == 0, "a refusal names the manifest");
    Require(line.find("; ") != std::string::npos, "a refusal names the way out");
  }
  xmlResetLastError();
  return 0;
}
