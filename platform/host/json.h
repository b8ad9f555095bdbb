// Parsing and writing JSON, in one source file, because nlohmann's parser and writer take long to compile.
#ifndef PLATFORM_HOST_JSON_H_
#define PLATFORM_HOST_JSON_H_

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace host {

using Json = nlohmann::ordered_json;

// The parsed document. For invalid text, a value that is neither object nor array.
Json ParseJson(std::string_view text);

// On one line, or indented when an indentation is given. Bytes that are not UTF-8 become U+FFFD.
std::string JsonText(const Json& json, int indentation = -1);
// Like JsonText, but ASCII without control characters, which is safe on a terminal.
std::string AsciiJson(const Json& json, int indentation = -1);

}  // namespace host

#endif
