// Parsing and writing JSON.
#include "platform/host/json.h"

#include <nlohmann/json.hpp>

namespace host {

Json ParseJson(std::string_view text) { return Json::parse(text, nullptr, false); }

std::string JsonText(const Json& json, int indentation) {
  return json.dump(indentation, ' ', false, Json::error_handler_t::replace);
}

std::string AsciiJson(const Json& json, int indentation) {
  return json.dump(indentation, ' ', true, Json::error_handler_t::replace);
}

}  // namespace host
