// The handles of the package libraries' doubles: which are alive, destroyed or misused.
#include <algorithm>
#include <utility>

#include "tests/doubles/platform.h"

namespace doubles {

namespace {

void Overwrite(std::string& text) { std::fill(text.begin(), text.end(), '?'); }

void OverwriteTexts(Record& record) {
  Overwrite(record.package.id);
  Overwrite(record.package.type);
  for (std::string& privilege : record.package.privileges) Overwrite(privilege);
  for (Application& application : record.package.applications) Overwrite(application.id);
  Overwrite(record.application.id);
  Overwrite(record.application.exec);
  if (record.application.root) Overwrite(*record.application.root);
  for (MetadataEntry& entry : record.application.metadata) Overwrite(entry.value);
}

}  // namespace

const Package* Platform::FindPackage(const std::string& id) const {
  const auto found = std::find_if(packages.begin(), packages.end(), [&](const Package& p) { return p.id == id; });
  return found == packages.end() ? nullptr : &*found;
}

const Application* Platform::FindApplication(const std::string& id) const {
  for (const Package& package : packages) {
    for (const Application& application : package.applications) {
      if (application.id == id) return &application;
    }
  }
  return nullptr;
}

Record* Platform::Create(Record record) {
  records_.push_back(std::make_unique<Record>(std::move(record)));
  return records_.back().get();
}

Record* Platform::Use(const std::string& function, void* handle, Record::Kind kind) {
  const auto found =
      std::find_if(records_.begin(), records_.end(), [&](const auto& record) { return record.get() == handle; });
  if (found != records_.end() && (*found)->kind == kind && (*found)->alive) return found->get();
  misuses.push_back(function);
  return nullptr;
}

int Platform::Destroy(const std::string& function, void* handle, Record::Kind kind) {
  Record* record = Use(function, handle, kind);
  if (record == nullptr) return -1;
  record->alive = false;
  OverwriteTexts(*record);
  return 0;
}

int Platform::Alive(Record::Kind kind) const {
  return static_cast<int>(std::count_if(records_.begin(), records_.end(),
                                        [&](const auto& record) { return record->kind == kind && record->alive; }));
}

int Platform::Alive() const {
  return static_cast<int>(
      std::count_if(records_.begin(), records_.end(), [](const auto& record) { return record->alive; }));
}

int Platform::Created(Record::Kind kind) const {
  return static_cast<int>(
      std::count_if(records_.begin(), records_.end(), [&](const auto& record) { return record->kind == kind; }));
}

}  // namespace doubles
