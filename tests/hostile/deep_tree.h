// Trees that are deeper than the longest path.
#ifndef TESTS_HOSTILE_DEEP_TREE_H_
#define TESTS_HOSTILE_DEEP_TREE_H_

#include <string>

namespace hostile {

// Creates `levels` nested directories of that name below `top`, with an "A.dll" in each.
void MakeDeepTree(const std::string& top, const std::string& name, int levels);

// The number of files of that name below `top`.
std::size_t CountBelow(const std::string& top, const std::string& name);

// Removes everything below `top`.
void RemoveDeepTree(const std::string& top);

}  // namespace hostile

#endif
