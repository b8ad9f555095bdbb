// The duplicate policy.
#include "plugin/duplicate_policy.h"

#include "base/affix.h"
#include "util/platform_utils/read_write_area.h"

namespace {

constexpr const char* kDpcDirectory = "/d.pc/";

}  // namespace

bool Holds(const Catalogue& catalogue, const std::string& name) { return catalogue.count(name) != 0; }

const std::string* FindOrigin(const CatalogueList& catalogues, const std::string& name,
                              bool (*holds)(const Catalogue&, const std::string&)) {
  for (const Catalogue* catalogue : catalogues) {
    if (holds(*catalogue, name)) return &catalogue->at(name);
  }
  return nullptr;
}

bool IsOnDpcPath(const std::string& path) { return Contains(path, kDpcDirectory); }

Exemption FindExemption(const std::string& origin, const std::string& path,
                        bool (*is_on_dpc_path)(const std::string&)) {
  if (origin == path) return Exemption::kSamePath;
  if (is_on_dpc_path(origin)) return Exemption::kOriginOnDpcPath;
  return is_on_dpc_path(path) ? Exemption::kOnDpcPath : Exemption::kNone;
}

Verdict VerdictOnDuplicateOf(const std::string& origin) {
  return IsInReadWriteArea(origin) ? Verdict::kReportedOnly : Verdict::kRemoved;
}

Judgement Foretell(const CatalogueList& catalogues, const std::string& path, const std::string& name) {
  const std::string* const origin = IsAssemblyName(path) ? FindOrigin(catalogues, name) : nullptr;
  if (origin == nullptr) return {Verdict::kKept, nullptr, Exemption::kNone};
  const Exemption exemption = FindExemption(*origin, path);
  return {exemption == Exemption::kNone ? VerdictOnDuplicateOf(*origin) : Verdict::kKept, origin, exemption};
}
