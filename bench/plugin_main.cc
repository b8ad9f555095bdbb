// bench_plugin pass|remove|add|unconcerned: runs the plug-in itself on the fixed paths.
#include <libxml/parser.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/measure.h"
#include "plugin/assembly_cache.h"
#include "plugin/cache_files.h"
#include "plugin/hooks.h"

namespace {

constexpr const char* kPackage = "org.example.bench";

// An install of a package that is no dotnet package.
void MeasureUnconcerned() {
  const char* const manifest = "<manifest><ui-application type=\"capp\"/></manifest>";
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
      xmlReadMemory(manifest, static_cast<int>(std::strlen(manifest)), nullptr, nullptr, XML_PARSE_NONET), xmlFreeDoc);
  bench::Measure([&] { PKGMGR_PARSER_PLUGIN_INSTALL(document.get(), kPackage); });
}

}  // namespace

int main(int argc, char** argv) {
  const char* const action = argc == 2 ? argv[1] : "";
  if (std::strcmp(action, "pass") == 0) {
    bench::Measure([] { gac(kPackage); });
  } else if (std::strcmp(action, "remove") == 0) {
    bench::Measure([] { removedPkgFromTPACacheFile(kPackage); });
  } else if (std::strcmp(action, "add") == 0) {
    bench::Measure([] { addPkgToTPACacheFile(kPackage); });
  } else if (std::strcmp(action, "unconcerned") == 0) {
    MeasureUnconcerned();
  } else {
    std::fputs("usage: bench_plugin pass|remove|add|unconcerned\n", stderr);
    return 2;
  }
  return 0;
}
