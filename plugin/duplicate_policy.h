// The duplicate policy: which files of a package duplicate a catalogued file, and what happens to them. Its functions
// have no side effects: they do not log, access the file system or delete. A caller can pass predicates that log their
// questions.
#ifndef PLUGIN_DUPLICATE_POLICY_H_
#define PLUGIN_DUPLICATE_POLICY_H_

#include <array>
#include <string>

#include "plugin/catalogues.h"

// The predicates that FindOrigin and FindExemption use by default.
bool Holds(const Catalogue& catalogue, const std::string& name);
bool IsOnDpcPath(const std::string& path);

// Catalogues in the order of precedence: the first one that holds a name decides about files with that name.
using CatalogueList = std::array<const Catalogue*, 4>;
inline CatalogueList ByPrecedence(const Catalogues& all) {
  return {&all.core, &all.framework, &all.components, &all.library};
}

// The catalogued path that decides about files called `name`, owned by its catalogue; null when no catalogue holds it.
const std::string* FindOrigin(const CatalogueList& catalogues, const std::string& name,
                              bool (*holds)(const Catalogue&, const std::string&) = Holds);

// Why the file `path` does not count as a duplicate of `origin`, the catalogued file of the same name.
enum class Exemption { kNone, kSamePath, kOriginOnDpcPath, kOnDpcPath };
Exemption FindExemption(const std::string& origin, const std::string& path,
                        bool (*is_on_dpc_path)(const std::string&) = IsOnDpcPath);

// What happens to a file: kept; kept, but reported, because its origin lies in the read-write area; removed.
enum class Verdict { kKept, kReportedOnly, kRemoved };
Verdict VerdictOnDuplicateOf(const std::string& origin);

struct Judgement {
  Verdict verdict;
  const std::string* origin;  // see FindOrigin
  Exemption exemption;        // why the file is kept although there is an origin
};

// What isUniqueDll would decide with these catalogues about the regular file `path`, whose file name is `name`.
Judgement Foretell(const CatalogueList& catalogues, const std::string& path, const std::string& name);

#endif
