// The duplicate policy.
#include "plugin/duplicate_policy.h"

#include "base/affix.h"
#include "plugin/catalogues.h"
#include "util/platform_utils/read_write_area.h"

namespace {

constexpr const char* kDpcDirectory = "/d.pc/";

const std::string* OriginOf(const std::string& path, const std::string& name) {
  if (!IsAssemblyName(path)) return nullptr;
  for (const auto* catalogue : CataloguesByPrecedence()) {
    const auto entry = catalogue->find(name);
    if (entry != catalogue->end()) return &entry->second;
  }
  return nullptr;
}

bool IsDuplicateOf(const std::string* origin, const std::string& path) {
  return origin != nullptr && *origin != path && !IsOnDpcPath(*origin) && !IsOnDpcPath(path);
}

}  // namespace

std::array<const std::map<std::string, std::string>*, 4> CataloguesByPrecedence() {
  return {&coreFX, &orvelFX, &coBA, &appLib};
}

bool IsOnDpcPath(const std::string& path) { return path.find(kDpcDirectory) != std::string::npos; }

bool IsDuplicate(const std::string& path, const std::string& name) { return IsDuplicateOf(OriginOf(path, name), path); }

Judgement Judge(const std::string& path, const std::string& name) {
  const std::string* const origin = OriginOf(path, name);
  if (!IsDuplicateOf(origin, path)) return {Verdict::kKept, origin};
  return {IsInReadWriteArea(*origin) ? Verdict::kReportedOnly : Verdict::kRemoved, origin};
}
