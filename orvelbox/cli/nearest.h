// What was meant by a mistyped name.
#ifndef ORVEL_ORVELBOX_CLI_NEAREST_H_
#define ORVEL_ORVELBOX_CLI_NEAREST_H_

#include <string>
#include <vector>

namespace orvelbox {

// The first of `names` that the fewest slips of the hand (a letter too many, too few, another one, two swapped) make
// `typed` of; empty when each of them takes more than one for each three letters begun.
std::string Nearest(const std::string& typed, const std::vector<std::string>& names);

}  // namespace orvelbox

#endif
