// Sequences of events on a small device, compared with the model. Each step of an input is two or three bytes: add or
// remove a file, change a package, write a cache text, or send an event. Everything is compared after each event.
#include <string>
#include <vector>

#include "fuzz/event_device.h"
#include "fuzz/event_model.h"
#include "fuzz/input.h"
#include "tests/support/device_root.h"

namespace {

using fuzz::EventDevice;
using fuzz::EventModel;
using fuzz::ModelFile;
using fuzz::ModelPackage;

using Texts = std::vector<std::string>;

constexpr std::size_t kMostSteps = 40;

const Texts kRoots = {"/opt/usr/apps/p", "/opt/usr/apps/p2", "/opt/usr/globalapps/w"};
const Texts kInPackages = {"/", "/lib/", "/bin/", "/bin/d.pc/", "/shared/res/", "/bin/.sac_symlink/"};
const Texts kInPlatform = {"/usr/share/dotnet.orvel/netcoreapp/", "/usr/share/dotnet.orvel/framework/",
                           "/usr/share/dotnet.orvel/d.pc/", "/usr/share/dotnet.orvel/d.pc/s/",
                           "/usr/share/dotnet.orvel/tvappapi/"};
const Texts kNames = {"A.dll", "B.dll", "C.ni.dll", "D.DLL", "e.json", "A.dll_deleted", "x:y[1].dll", ".dll"};
const Texts kPieces = {"[START]",
                       "[END]",
                       ":",
                       "/opt/usr/apps/p/shared/res/A.dll",
                       "/opt/usr/apps/p2/shared/res/",
                       "/opt/usr/globalapps/w/x.dll",
                       "/opt/usr/apps/p",
                       "[",
                       "]",
                       "%n\n"};

Texts Directories() {
  Texts directories = kInPlatform;
  for (const std::string& root : kRoots) {
    for (const std::string& inside : kInPackages) directories.push_back(root + inside);
  }
  return directories;
}

const Texts& AllDirectories() {
  static const Texts directories = Directories();
  return directories;
}

Texts DirectoriesToMake() {
  Texts directories = AllDirectories();
  directories.insert(directories.end(), {"/opt/usr/home/owner/share/dotnet", "/opt/usr/store"});
  return directories;
}

class Sequence {
 public:
  explicit Sequence(EventModel::Memory& memory) : device_(DirectoriesToMake()), model_(memory) {
    model_.packages = {{"p", kRoots[0]}, {"p2", kRoots[1]}, {"w", kRoots[2]}};
    device_.Register(model_.packages);
    Put(fuzz::kLinkTarget, {false, "target"});
  }

  void Step(fuzz::Input& input) {
    switch (input.Below(8)) {
      case 0:
      case 1:
        return PutFile(input);
      case 2:
        return ChangePackage(input);
      case 3:
        return LayDownCache(input);
      default:
        return SendEvent(input);
    }
  }

 private:
  void Put(const std::string& path, const ModelFile& file) {
    device_.tree().Put(path, file);
    model_.files[path] = file;
  }

  void Remove(const std::string& path) {
    device_.tree().Remove(path);
    model_.files.erase(path);
  }

  void PutFile(fuzz::Input& input) {
    const Texts& directories = AllDirectories();
    const std::string& directory = directories[input.Below(directories.size())];
    const std::size_t choice = input.Byte();
    const std::string path = directory + kNames[choice % kNames.size()];
    const std::size_t kind = choice / kNames.size() % 8;
    if (kind == 0) return Remove(path);
    Put(path, kind == 1 ? ModelFile{true, fuzz::kLinkTarget} : ModelFile{false, "MZ"});
  }

  void ChangePackage(fuzz::Input& input) {
    const std::size_t choice = input.Byte();
    ModelPackage& package = model_.packages[choice % model_.packages.size()];
    package.installed = (choice & 16) == 0;
    package.debugged = (choice & 32) != 0;
    package.platform = (choice & 64) != 0;
    package.coba = (choice & 128) != 0;
    device_.Register(model_.packages);
  }

  void LayDownCache(fuzz::Input& input) {
    const std::size_t choice = input.Byte();
    const char* file = (choice & 1) != 0 ? support::kTpaFile : support::kCobaFile;
    std::string text;
    for (std::size_t left = choice / 2 % 12; left > 0; --left) text += kPieces[input.Below(kPieces.size())];
    if ((choice & 128) != 0) return Remove(file);
    Put(file, {false, (choice & 64) != 0 ? text : "[START]" + text + "[END]"});
  }

  void SendEvent(fuzz::Input& input) {
    const std::size_t choice = input.Byte();
    const auto event = static_cast<fuzz::ModelEvent>(choice % 8);
    const auto manifest = static_cast<fuzz::ModelManifest>(input.Below(fuzz::kModelManifests));
    const std::string id = choice / 8 % 8 == 7 ? "unknown" : model_.packages[choice / 8 % model_.packages.size()].id;
    const int expected = model_.Send(event, manifest, id);
    fuzz::Require(device_.Send(event, manifest, id) == expected, "an event returns what it should");
    fuzz::Require(device_.restarts() == model_.restarts, "the loader is restarted when it should be");
    Compare();
  }

  void Compare() {
    const auto& actual = device_.tree().Files();
    if (actual == model_.files) return;
    for (const auto& [path, file] : model_.files) {
      const auto found = actual.find(path);
      fuzz::RequireEqual(path, found == actual.end() ? "" : path, "what should be there is there");
      fuzz::RequireEqual(file.content, found->second.content, "what is there holds what it should");
      fuzz::Require(found->second.link == file.link, "what is there is of the kind that it should be");
    }
    for (const auto& [path, file] : actual) {
      fuzz::RequireEqual(model_.files.count(path) == 0 ? "" : path, path, "what should not be there is not there");
    }
    fuzz::Require(false, "the device is as it should be");
  }

  EventDevice device_;
  EventModel model_;
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) { return fuzz::EnterDevice() ? 0 : 1; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static EventModel::Memory memory;
  fuzz::Input input(data, size);
  Sequence sequence(memory);
  for (std::size_t step = 0; step < kMostSteps && !input.empty(); ++step) sequence.Step(input);
  return 0;
}
