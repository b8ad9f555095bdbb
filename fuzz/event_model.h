// A simple model of the plug-in on a small device: the result of each event and the files after it. It is independent
// of the plug-in's implementation.
#ifndef FUZZ_EVENT_MODEL_H_
#define FUZZ_EVENT_MODEL_H_

#include <map>
#include <set>
#include <string>
#include <vector>

namespace fuzz {

inline constexpr const char* kReadWriteRoot = "/opt/usr/globalapps";
// The target of every link.
inline constexpr const char* kLinkTarget = "/opt/usr/store/target";

struct ModelPackage {
  std::string id;
  std::string root;
  bool installed = true;
  bool debugged = false;
  bool platform = false;  // has the platform privilege
  bool coba = false;      // its application's record has the CoBA key
};

enum class ModelManifest { kNone, kOther, kSample, kDotnet, kDotnetCoba };
inline constexpr std::size_t kModelManifests = 5;

enum class ModelEvent { kInstall, kUpgrade, kRemoved, kUninstall, kRecoverUninstall, kClean, kCleanup, kUndo };

struct ModelFile {
  bool link = false;
  std::string content;

  bool operator==(const ModelFile& other) const { return link == other.link && content == other.content; }
};

class EventModel {
 public:
  // The state that the process keeps between inputs: whether it saw a dotnet manifest, and the package of the last
  // pass.
  struct Memory {
    bool seen_dotnet = false;
    std::string last_pass;
  };

  explicit EventModel(Memory& memory) : memory_(memory) {}

  std::vector<ModelPackage> packages;      // in the order in which the platform lists them
  std::map<std::string, ModelFile> files;  // by path, cache files included
  int restarts = 0;

  // The result of the event for package `id`. Afterwards files and restarts are as they must be.
  int Send(ModelEvent event, ModelManifest manifest, const std::string& id);

 private:
  using Catalogue = std::map<std::string, std::string>;

  bool PassesGate(ModelManifest manifest);
  int Install(ModelManifest manifest, const std::string& id);
  int Clean(ModelManifest manifest, const std::string& id);
  int Pass(const std::string& id);
  void TakeUp(Catalogue& catalogue, const std::string& directory);
  int RemoveDuplicates(const std::string& root);
  bool Remove(const std::string& id);
  bool RemoveFrom(const char* file, const std::string& root);
  void Add(const std::string& id);
  void AddTo(const char* file, const std::string& root, const std::string& entries);
  std::vector<std::string> NamesIn(const std::string& directory) const;
  const ModelPackage* Find(const std::string& id) const;
  std::string RootOf(const std::string& id) const;

  Memory& memory_;
  Catalogue catalogues_[4];  // core, framework, CoBA, libraries: in order of precedence
  std::set<std::string> uninstalled_;
  std::set<std::string> upgraded_;
};

}  // namespace fuzz

#endif
