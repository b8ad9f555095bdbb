// The duplicate policy: which files of a package duplicate a catalogued one, and what becomes of them. Questions
// without side effects: nothing here logs, looks at the file system or deletes. Whoever acts on the answers hands in
// questions that log being asked.
#ifndef PLUGIN_DUPLICATE_POLICY_H_
#define PLUGIN_DUPLICATE_POLICY_H_

#include <array>
#include <string>

#include "plugin/catalogues.h"

// The first catalogue that holds a name decides about the files of that name.
std::array<const Catalogue*, 4> ByPrecedence(const Catalogues& catalogues);

// The catalogued path that decides about files called `name`, owned by its catalogue; null when none holds the name.
// `holds` is the question put to each catalogue.
bool Holds(const Catalogue& catalogue, const std::string& name);
const std::string* FindOrigin(const Catalogues& catalogues, const std::string& name,
                              bool (*holds)(const Catalogue&, const std::string&) = Holds);

// What keeps a file from being a duplicate of `origin`, the catalogued file of its name.
enum class Exemption { kNone, kSamePath, kOriginOnDpcPath, kOnDpcPath };

// `is_on_dpc_path` is the question put to each path.
bool IsOnDpcPath(const std::string& path);
Exemption FindExemption(const std::string& origin, const std::string& path,
                        bool (*is_on_dpc_path)(const std::string&) = IsOnDpcPath);

enum class Verdict {
  kKept,          // it is no duplicate
  kReportedOnly,  // a duplicate that stays, because its catalogued copy lies in the read-write area
  kRemoved
};

Verdict VerdictOnDuplicateOf(const std::string& origin);

struct Judgement {
  Verdict verdict;
  const std::string* origin;  // see FindOrigin
  Exemption exemption;        // of a file that is kept although there is an origin
};

// What isUniqueDll would make of the file `path` with bare name `name`, a regular file.
Judgement Foretell(const Catalogues& catalogues, const std::string& path, const std::string& name);

#endif
