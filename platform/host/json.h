// JSON as it is read and written here, in one source, because the parser and writer take long to compile.
#ifndef PLATFORM_HOST_JSON_H_
#define PLATFORM_HOST_JSON_H_

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace host {

using Json = nlohmann::ordered_json;

// The document; when the text is none, a value that is neither object nor array.
Json ParseJson(std::string_view text);

// In one line, or over several when an indentation is given. What is no UTF-8 becomes U+FFFD.
std::string JsonText(const Json& json, int indentation = -1);
// As JsonText, in ASCII without control characters, which is safe on a terminal.
std::string AsciiJson(const Json& json, int indentation = -1);

}  // namespace host

#endif
