// The state of the doubles and its journal.
#include "tests/doubles/platform.h"

#include <memory>
#include <utility>

namespace doubles {

namespace {

std::unique_ptr<Platform>& Instance() {
  static auto instance = std::make_unique<Platform>();
  return instance;
}

}  // namespace

Package MakePackage(const std::string& id, const std::string& root) {
  Package package;
  package.id = id;
  Application application;
  application.id = id;
  application.root = root;
  package.applications.push_back(application);
  return package;
}

Platform& Current() { return *Instance(); }

Platform& Reset() {
  Instance() = std::make_unique<Platform>();
  return Current();
}

void Platform::FailNext(const std::string& function, int code) { failures_[function] = code; }

void Platform::GiveNullNext(const std::string& function) { nulls_[function] = true; }

std::optional<int> Platform::TakeFailure(const std::string& function) {
  const auto failure = failures_.find(function);
  if (failure == failures_.end()) return std::nullopt;
  const int code = failure->second;
  failures_.erase(failure);
  return code;
}

bool Platform::TakeNull(const std::string& function) { return nulls_.erase(function) > 0; }

void Platform::RecordEvent(const Event& event) {
  if (keeps_journal) journal.push_back(event);
  if (!on_event) return;
  const auto callee = on_event;
  callee(event);
}

void Platform::RecordCall(const std::string& text) { RecordEvent({Event::Kind::kCall, text, {}}); }

std::vector<std::string> Platform::Calls(const std::string& prefix) const {
  std::vector<std::string> calls;
  for (const Event& event : journal) {
    if (event.kind == Event::Kind::kCall && event.text.rfind(prefix, 0) == 0) calls.push_back(event.text);
  }
  return calls;
}

std::vector<std::string> Platform::Messages() const {
  std::vector<std::string> messages;
  for (const Event& event : journal) {
    if (event.kind == Event::Kind::kLog) messages.push_back(MessageOf(event.log));
  }
  return messages;
}

}  // namespace doubles
