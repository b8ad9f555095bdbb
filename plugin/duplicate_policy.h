// The duplicate policy as questions without side effects: nothing here logs, looks at the file system or deletes. The
// functions that act on the answers are in duplicates.
#ifndef PLUGIN_DUPLICATE_POLICY_H_
#define PLUGIN_DUPLICATE_POLICY_H_

#include <array>
#include <map>
#include <string>

// The catalogues in the order of precedence: the first one that holds a name decides about the files of that name.
std::array<const std::map<std::string, std::string>*, 4> CataloguesByPrecedence();

// Does `path` lie on a DPC path?
bool IsOnDpcPath(const std::string& path);

// Is the package's file `path` with bare name `name`, a regular file, a duplicate of a catalogued one?
bool IsDuplicate(const std::string& path, const std::string& name);

enum class Verdict {
  kKept,          // it is no duplicate
  kReportedOnly,  // a duplicate that stays, because its catalogued copy lies in the read-write area
  kRemoved
};

struct Judgement {
  Verdict verdict;
  const std::string* origin;  // the catalogued path that decides, owned by its catalogue; null when there is none
};

// What becomes of such a file, by the catalogues as they are.
Judgement Judge(const std::string& path, const std::string& name);

#endif
