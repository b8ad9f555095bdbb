// Trees deeper than a path can say.
#ifndef TESTS_HOSTILE_DEEP_TREE_H_
#define TESTS_HOSTILE_DEEP_TREE_H_

#include <string>

namespace hostile {

// Makes `levels` directories of that name below `top`, each in the one before, with an "A.dll" in each.
void MakeDeepTree(const std::string& top, const std::string& name, int levels);

// How many files of that name lie below `top`.
std::size_t CountBelow(const std::string& top, const std::string& name);

// Removes what lies below `top`.
void RemoveDeepTree(const std::string& top);

}  // namespace hostile

#endif
