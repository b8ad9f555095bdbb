// The device of the event fuzzer: the real files that the model tells of, the doubles' packages, and the hooks.
#ifndef FUZZ_EVENT_DEVICE_H_
#define FUZZ_EVENT_DEVICE_H_

#include <map>
#include <string>
#include <vector>

#include "fuzz/event_model.h"

namespace fuzz {

// Gives this process fixed paths of its own, for good. False, with a line on standard error, where that is impossible.
bool EnterDevice();

class EventDevice {
 public:
  // An empty device with the directories, and a plug-in that remembers no more than it must.
  explicit EventDevice(const std::vector<std::string>& directories);

  void Put(const std::string& path, const ModelFile& file) const;
  void Remove(const std::string& path) const;
  void Register(const std::vector<ModelPackage>& packages) const;

  int Send(ModelEvent event, ModelManifest manifest, const std::string& id);

  // All files and links that there are.
  std::map<std::string, ModelFile> Files() const;
  int restarts() const { return restarts_; }

 private:
  int restarts_ = 0;
};

}  // namespace fuzz

#endif
