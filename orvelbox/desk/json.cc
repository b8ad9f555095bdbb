// Writing JSON.
#include "orvelbox/desk/json.h"

#include <nlohmann/json.hpp>

namespace orvelbox {

std::string OneLine(const Json& json) { return json.dump(-1, ' ', true, Json::error_handler_t::replace); }

}  // namespace orvelbox
