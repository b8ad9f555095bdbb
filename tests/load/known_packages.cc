// Creates the packages of the load tests.
#include "tests/load/known_packages.h"

#include "tests/support/files.h"
#include "tests/support/orvelbox_desk.h"
#include "tests/support/zip.h"

namespace load {
namespace {

namespace fs = std::filesystem;

constexpr int kVersions = 3;
constexpr int kPlainDlls = 10;
constexpr std::size_t kLargeFile = 50'000;
constexpr const char* kPrivilege = "<privileges><privilege>privilege/of/no/consequence</privilege></privileges>";

// Every content names its package and version, so that a mixture of two versions is noticed.
Files FilesOf(const std::string& id, int version, bool shares) {
  const std::string mark = id + " " + std::to_string(version) + " ";
  Files files = {{kDuplicate, mark}, {"bin/Main.dll", mark}, {"res/large", mark + std::string(kLargeFile, 'x')}};
  for (int i = 0; i < kPlainDlls + version; ++i) files["bin/" + id + std::to_string(i) + ".dll"] = mark;
  for (int i = 0; shares && i <= version; ++i) files["shared/res/" + id + ".S" + std::to_string(i) + ".dll"] = mark;
  return files;
}

std::string InformationText(const std::string& root) {
  const std::string dll = root + "/" + kDuplicate;
  return dll + " was deleted because /usr/share/dotnet.orvel/" + kPlatformDll + " exists\nRemove " + dll +
         " from OPK\n";
}

KnownVersion Make(const fs::path& directory, const std::string& id, int number, bool shares) {
  KnownVersion known;
  known.id = id;
  known.version = std::to_string(number);
  known.directory = directory / (id + "-" + known.version);
  known.archive = known.directory + ".opk";
  known.installed = FilesOf(id, number, shares);
  known.installed["orvel-manifest.xml"] =
      e2e::ManifestText(id, known.version, shares ? e2e::CobaMetadata() : "", kPrivilege);
  std::vector<support::ZipEntry> entries;
  for (const auto& [path, content] : known.installed) {
    support::WriteFile(fs::path(known.directory) / path, content);
    entries.push_back({path, content});
    if (path.rfind("shared/res/", 0) == 0) known.tpa_entries.push_back(RootOf(id) + "/" + path);
  }
  support::WriteFile(known.archive, support::ZipOf(entries));
  if (shares) known.coba_entries = {RootOf(id) + "/shared/res/"};
  known.installed.erase(kDuplicate);
  known.installed[kInformation] = InformationText(RootOf(id));
  return known;
}

}  // namespace

std::string RootOf(const std::string& id) { return "/opt/usr/globalapps/" + id; }

KnownPackages MakeKnownPackages(const fs::path& directory) {
  KnownPackages packages;
  for (const std::string id : {"org.alpha", "org.beta", "org.gamma", "org.delta"}) {
    const bool shares = id == "org.alpha" || id == "org.beta";
    for (int number = 1; number <= kVersions; ++number) {
      const KnownVersion known = Make(directory, id, number, shares);
      packages[id][known.version] = known;
    }
  }
  return packages;
}

}  // namespace load
