// A trace as a page: page.html, filled with the spans.
#include <map>
#include <nlohmann/json.hpp>
#include <string_view>

#include "orvelbox/desk/output.h"
#include "orvelbox/desk/xml.h"
#include "orvelbox/trace/spans.h"
#include "platform/host/json.h"

// Generated from page.html: kTracePage.
#include "trace_page.h"

namespace orvelbox {
namespace {

std::string Escaped(const std::string& text) { return XmlEscaped(Printable(text)); }

std::string Table(const Lane& lane) {
  std::string text =
      "<table><caption>" + Title(lane) + "</caption><tr><th>begin ms<th>took ms<th class=\"name\">span</tr>\n";
  for (const Span& span : lane.spans) {
    text += "<tr><td>" + Milliseconds(span.begin) + "<td>" + Milliseconds(span.end - span.begin) +
            "<td class=\"name\" style=\"padding-left: " + std::to_string(span.depth) + "em\">" + Escaped(span.name) +
            "</tr>\n";
  }
  return text + "</table>\n";
}

// Most names occur often.
class Names {
 public:
  std::size_t NumberOf(const std::string& name) {
    const auto [place, added] = numbers_.try_emplace(name, numbers_.size());
    if (added) list_.push_back(Printable(name));
    return place->second;
  }
  const host::Json& list() const { return list_; }

 private:
  std::map<std::string, std::size_t> numbers_;
  host::Json list_ = host::Json::array();
};

host::Json LaneData(const Lane& lane) {
  Names names;
  host::Json spans = host::Json::array();
  for (const Span& span : lane.spans) {
    spans.push_back({names.NumberOf(span.name), span.begin, span.end, span.depth, span.closed, ColourOf(span)});
  }
  return {{"title", Title(lane)}, {"duration", lane.Duration()}, {"names", names.list()}, {"spans", spans}};
}

// As data inside of a script element, which "</script" would end.
std::string ScriptData(const host::Json& json) {
  std::string text;
  for (const char c : host::AsciiJson(json)) text += c == '<' ? "\\u003c" : std::string(1, c);
  return text;
}

using Values = std::map<std::string_view, std::string>;

// What is filled in is not looked at again.
std::string Filled(std::string_view page, const Values& values) {
  std::string text;
  for (;;) {
    std::size_t at = std::string_view::npos;
    auto next = values.end();
    for (auto value = values.begin(); value != values.end(); ++value) {
      if (const std::size_t place = page.find(value->first); place < at) {
        at = place;
        next = value;
      }
    }
    text += page.substr(0, at);
    if (next == values.end()) return text;
    text += next->second;
    page.remove_prefix(at + next->first.size());
  }
}

}  // namespace

std::string TraceHtml(const std::vector<Lane>& lanes, const std::string& title) {
  std::string tables;
  host::Json data = host::Json::array();
  for (const Lane& lane : lanes) {
    tables += Table(lane);
    data.push_back(LaneData(lane));
  }
  return Filled(kTracePage, {{"@TITLE@", Escaped(title)},
                             {"@TABLES@", tables},
                             {"@LANES@", ScriptData(data)},
                             {"@COLOURS@", ScriptData(kSpanColours)}});
}

}  // namespace orvelbox
