// JSON as orvelbox prints it: on one line, in ASCII, text that is no UTF-8 with replacement characters.
#ifndef ORVEL_ORVELBOX_DESK_JSON_H_
#define ORVEL_ORVELBOX_DESK_JSON_H_

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace orvelbox {

// Keeps the members of an object in the order in which they were added.
using Json = nlohmann::ordered_json;

std::string OneLine(const Json& json);

}  // namespace orvelbox

#endif
