// A trace as a picture for a browser. Everything is in the one file; nothing is fetched, no script runs.
#ifndef ORVEL_ORVELBOX_TRACE_PICTURE_H_
#define ORVEL_ORVELBOX_TRACE_PICTURE_H_

#include "orvelbox/trace/spans.h"

namespace orvelbox {

// An SVG document: for every lane, on a scale of its own, a box for every span, in the row of its depth.
std::string TraceSvg(const std::vector<Lane>& lanes);

// An HTML document with that picture and a table of the spans. `title` is its title.
std::string TraceHtml(const std::vector<Lane>& lanes, const std::string& title);

}  // namespace orvelbox

#endif
