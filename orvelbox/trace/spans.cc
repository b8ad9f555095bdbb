// From events to spans.
#include "orvelbox/trace/spans.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/host/device_error.h"
#include "platform/host/json.h"

namespace orvelbox {
namespace {

struct Event {
  std::string name;
  std::string phase;
  std::int64_t process = 0;
  std::int64_t thread = 0;
  std::int64_t time = 0;
};

Event ReadEvent(const host::Json& event) {
  return {event.at("name").get<std::string>(), event.at("ph").get<std::string>(), event.at("pid").get<std::int64_t>(),
          event.at("tid").get<std::int64_t>(), event.at("ts").get<std::int64_t>()};
}

// The format does not demand the array's closing bracket, and who writes event by event never writes it.
host::Json ReadArray(std::string_view text) {
  host::Json array = host::ParseJson(text);
  if (array.is_discarded()) array = host::ParseJson(std::string(text) + "]");
  return array.is_array() ? array : throw std::invalid_argument("no array");
}

// A lane that is being read.
class OpenLane {
 public:
  OpenLane(const Event& first, std::size_t place) : start_(first.time), place_(place) {
    lane_.process = first.process;
    lane_.thread = first.thread;
  }

  void Add(const Event& event) {
    last_ = std::max(last_, event.time - start_);
    if (event.phase == "B") {
      lane_.spans.push_back({event.name, last_, last_, open_.size(), false});
      open_.push_back(lane_.spans.size() - 1);
    } else if (event.phase == "E" && !open_.empty()) {
      lane_.spans[open_.back()].end = last_;
      lane_.spans[open_.back()].closed = true;
      open_.pop_back();
    }
  }

  // The lane, its open spans ended at the last event. Nothing is to be added from here on.
  Lane Finish() {
    for (const std::size_t open : open_) lane_.spans[open].end = last_;
    return std::move(lane_);
  }
  std::size_t place() const { return place_; }

 private:
  Lane lane_;
  std::vector<std::size_t> open_;  // the spans that are open, the innermost last
  std::int64_t start_;
  std::int64_t last_ = 0;
  std::size_t place_;  // among the lanes
};

std::vector<Lane> ReadLanes(const host::Json& events) {
  std::map<std::pair<std::int64_t, std::int64_t>, OpenLane> open;
  for (const host::Json& element : events) {
    const Event event = ReadEvent(element);
    const auto lane = open.try_emplace({event.process, event.thread}, event, open.size()).first;
    lane->second.Add(event);
  }
  std::vector<Lane> lanes(open.size());
  for (auto& [thread, lane] : open) lanes[lane.place()] = lane.Finish();
  lanes.erase(std::remove_if(lanes.begin(), lanes.end(), [](const Lane& lane) { return lane.spans.empty(); }),
              lanes.end());
  return lanes;
}

}  // namespace

std::int64_t Lane::Duration() const {
  return std::max_element(spans.begin(), spans.end(),
                          [](const Span& one, const Span& other) { return one.end < other.end; })
      ->end;
}

std::size_t Lane::Depth() const {
  return 1 + std::max_element(spans.begin(), spans.end(), [](const Span& one, const Span& other) {
               return one.depth < other.depth;
             })->depth;
}

std::vector<Lane> ReadTrace(std::string_view text, const std::string& file) {
  try {
    return ReadLanes(ReadArray(text));
  } catch (const std::exception&) {
    throw host::DeviceError(file + ": no trace; write one with: orvelbox --trace FILE install PACKAGE");
  }
}

}  // namespace orvelbox
