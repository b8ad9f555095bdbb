// Converts events to spans, and checks a trace file before it is written.
#include "orvelbox/trace/spans.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

#include "platform/host/device_error.h"
#include "platform/host/json.h"

namespace fs = std::filesystem;

namespace orvelbox {
namespace {

// The format does not require the closing bracket, and a writer that appends events never writes it.
host::Json ReadArray(std::string_view text) {
  host::Json array = host::ParseJson(text);
  if (array.is_discarded()) array = host::ParseJson(std::string(text) + "]");
  return array.is_array() ? array : throw std::invalid_argument("no array");
}

// A lane during parsing.
class OpenLane {
 public:
  OpenLane(std::int64_t process, std::int64_t thread, std::int64_t start, std::size_t place)
      : lane_{process, thread, {}}, start_(start), place_(place) {}

  void Add(const std::string& phase, const std::string& name, std::int64_t time) {
    last_ = std::max(last_, time - start_);
    if (phase == "B") {
      lane_.spans.push_back({name, last_, last_, open_.size(), false});
      open_.push_back(lane_.spans.size() - 1);
    } else if (phase == "E" && !open_.empty()) {
      lane_.spans[open_.back()].end = last_;
      lane_.spans[open_.back()].closed = true;
      open_.pop_back();
    }
  }

  // The finished lane. Its open spans end at the last event. Nothing may be added afterwards.
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
  std::size_t place_;  // index of the lane
};

std::vector<Lane> ReadLanes(const host::Json& events) {
  std::map<std::pair<std::int64_t, std::int64_t>, OpenLane> open;
  for (const host::Json& event : events) {
    const std::int64_t process = event.at("pid");
    const std::int64_t thread = event.at("tid");
    const std::int64_t time = event.at("ts");
    const auto lane = open.try_emplace({process, thread}, process, thread, time, open.size()).first;
    lane->second.Add(event.at("ph"), event.at("name"), time);
  }
  std::vector<Lane> lanes(open.size());
  for (auto& [thread, lane] : open) lanes[lane.place()] = lane.Finish();
  lanes.erase(std::remove_if(lanes.begin(), lanes.end(), [](const Lane& lane) { return lane.spans.empty(); }),
              lanes.end());
  return lanes;
}

bool BeginsLikeATrace(const fs::path& file) {
  std::ifstream stream(file);
  const int first = stream.get();
  return stream.eof() || first == '[';
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

void RequireTraceable(const fs::path& file) {
  const fs::path absolute = fs::absolute(file);
  const bool there = fs::exists(absolute);
  if (access(there ? absolute.c_str() : absolute.parent_path().c_str(), W_OK) != 0 || fs::is_directory(absolute)) {
    throw host::DeviceError(file.string() + ": no trace can be written there; name another file with --trace");
  }
  if (there && !BeginsLikeATrace(absolute)) {
    throw host::DeviceError(file.string() + ": is there and no trace; name another file with --trace");
  }
}

}  // namespace orvelbox
