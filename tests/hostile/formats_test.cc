// Data never becomes a format: names from a package reach the log as arguments, byte for byte.
#include "morvath/assembly_files.h"
#include "plugin/duplicates.h"
#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"

namespace hostile {
namespace {

// Used as a format it would print something else, write to memory or crash.
constexpr const char* kData = "stranger%n%s%n%s%123456d";

// No format and no span's name contains data of the package, and at least `mentions` log lines contain it as an
// argument.
void ExpectNoDataInFormats(const doubles::Platform& platform, int mentions) {
  int mentioned = 0;
  for (const Event& event : platform.journal) {
    EXPECT_EQ(std::string::npos, event.log.format.find("stranger")) << event.log.format;
    if (event.kind == Event::Kind::kSpanBegin) {
      EXPECT_EQ(std::string::npos, event.text.find_first_of('%')) << event.text;
    }
    if (event.kind == Event::Kind::kLog && event.log.text.find(kData) != std::string::npos) ++mentioned;
  }
  EXPECT_LE(mentions, mentioned);
}

Document HostileManifest() {
  return support::ManifestOf("<stranger/>" + ApplicationElement("ui-application", std::string("dotnet-") + kData) +
                             MetadataElement(kData, kData) + MetadataElement(support::kCobaKey, "true"));
}

void PutHostilePackage(const WatchedDevice& device) {
  doubles::Package package = doubles::MakePackage(kData, InPackage(kData));
  package.privileges = {kData, support::kDebuggingPrivilege};
  device.platform().packages = {package, unit::CobaPackage("coba", InPackage(std::string("coba") + kData))};
  const std::string dll = std::string(kData) + ".dll";
  WriteFile(Core(dll));
  WriteFile(InPackage(kData + ("/bin/" + dll)));
  WriteFile(InPackage(kData + ("/lib/own" + dll)));
  WriteFile(InPackage(kData + ("/shared/res/" + dll)));
  WriteFile(kTpaFile, "[START]" + InPackage(kData + ("/shared/res/" + dll)) + "[END]");
  WriteFile(kCobaFile, "[START]" + InPackage(kData + std::string("/shared/res/")) + "[END]");
}

TEST(Formats, what_an_event_meets_is_never_taken_for_a_format) {
  Hook* const hooks[] = {PKGMGR_PARSER_PLUGIN_UPGRADE,   PKGMGR_PARSER_PLUGIN_REMOVED,
                         PKGMGR_PARSER_PLUGIN_CLEANUP,   PKGMGR_PARSER_PLUGIN_UNDO,
                         PKGMGR_PARSER_PLUGIN_UNINSTALL, PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL};
  OnWatchedDevice([&](const WatchedDevice& device) {
    PutHostilePackage(device);
    const Document manifest = HostileManifest();
    for (Hook* hook : hooks) {
      const Outcome outcome = device.Watch([&] { return hook(manifest.get(), kData); });
      if (hook == PKGMGR_PARSER_PLUGIN_UPGRADE) {
        EXPECT_EQ(-1, outcome.result);
        EXPECT_EQ(0u, outcome.standard_error.find("### INSTALL : morvath : " + std::string(kData) + "\n"));
      }
    }
    ExpectNoDataInFormats(device.platform(), 10);
  });
}

HOSTILE_TEST(Formats, a_package_without_a_root_is_told_by_its_own_id) {
  const Document manifest = HostileManifest();
  for (Hook* hook : {PKGMGR_PARSER_PLUGIN_INSTALL, PKGMGR_PARSER_PLUGIN_CLEAN, PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL}) {
    device.Watch([&] { return hook(manifest.get(), kData); });
  }
  EXPECT_TRUE(device.Logged(std::string("add to cache called for ") + kData + ", but pkgroot is empty!"));
  ExpectNoDataInFormats(device.platform(), 2);
}

HOSTILE_TEST(Formats, the_tools_helpers_take_nothing_for_a_format_either) {
  printAll(std::string(kData) + ":" + kData);
  device.platform().FailNext("smack_setlabel", -1);
  device.Watch([] { return setSmack(kData, kData) ? 1 : 0; });
  exist(InPackage(kData));
  ExpectNoDataInFormats(device.platform(), 4);
}

}  // namespace
}  // namespace hostile
