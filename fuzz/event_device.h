// The device of the event fuzzer: real files as in the model, the packages of the doubles, and the hooks.
#ifndef FUZZ_EVENT_DEVICE_H_
#define FUZZ_EVENT_DEVICE_H_

#include <string>
#include <vector>

#include "fuzz/device_tree.h"
#include "fuzz/event_model.h"

namespace fuzz {

// Gives this process its own fixed paths until it ends. When that is impossible, prints a line on standard error and
// returns false.
bool EnterDevice();

class EventDevice {
 public:
  // An empty device with the directories; the plug-in keeps only the state that cannot be reset.
  explicit EventDevice(const std::vector<std::string>& directories);
  ~EventDevice();
  EventDevice(const EventDevice&) = delete;
  EventDevice& operator=(const EventDevice&) = delete;

  DeviceTree& tree() { return *tree_; }
  void Register(const std::vector<ModelPackage>& packages) const;

  int Send(ModelEvent event, ModelManifest manifest, const std::string& id);

  int restarts() const { return restarts_; }

 private:
  DeviceTree* tree_;
  int restarts_ = 0;
};

}  // namespace fuzz

#endif
