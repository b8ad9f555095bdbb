// The duplicate policy: which files of a package duplicate a catalogued one, and what becomes of them. Questions
// without side effects: nothing here logs, looks at the file system or deletes. Who acts on the answers can hand in
// predicates that log what they are asked.
#ifndef PLUGIN_DUPLICATE_POLICY_H_
#define PLUGIN_DUPLICATE_POLICY_H_

#include <array>
#include <string>

#include "plugin/catalogues.h"

bool Holds(const Catalogue& catalogue, const std::string& name);
bool IsOnDpcPath(const std::string& path);

// Catalogues in the order of precedence: the first one that holds a name decides about the files of that name.
using CatalogueList = std::array<const Catalogue*, 4>;
inline CatalogueList ByPrecedence(const Catalogues& all) {
  return {&all.core, &all.framework, &all.components, &all.library};
}

// The catalogued path that decides about files called `name`, owned by its catalogue; null when none holds the name.
const std::string* FindOrigin(const CatalogueList& catalogues, const std::string& name,
                              bool (*holds)(const Catalogue&, const std::string&) = Holds);

// What keeps the file `path` from being a duplicate of `origin`, the catalogued file of its name.
enum class Exemption { kNone, kSamePath, kOriginOnDpcPath, kOnDpcPath };
Exemption FindExemption(const std::string& origin, const std::string& path,
                        bool (*is_on_dpc_path)(const std::string&) = IsOnDpcPath);

// What becomes of a file: it is no duplicate; it is one, but its origin lies in the read-write area; it goes.
enum class Verdict { kKept, kReportedOnly, kRemoved };
Verdict VerdictOnDuplicateOf(const std::string& origin);

struct Judgement {
  Verdict verdict;
  const std::string* origin;  // see FindOrigin
  Exemption exemption;        // of a file that is kept although there is an origin
};

// What isUniqueDll would do, by these catalogues, with the file `path` of bare name `name`, a regular one.
Judgement Foretell(const CatalogueList& catalogues, const std::string& path, const std::string& name);

#endif
