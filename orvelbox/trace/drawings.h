// A trace drawn: as lines of text, and as a picture for a browser.
#ifndef ORVEL_ORVELBOX_TRACE_DRAWINGS_H_
#define ORVEL_ORVELBOX_TRACE_DRAWINGS_H_

#include "orvelbox/trace/spans.h"

namespace orvelbox {

// Microseconds as milliseconds with three decimals.
std::string Milliseconds(std::int64_t microseconds);
// "process 7, thread 8", the thread only where it is not the process's first.
std::string Title(const Lane& lane);

// The lines of a timeline, every lane on a scale of its own. Lines are at most `width` columns wide; 0: as wide as they
// need.
std::vector<std::string> DrawTimeline(const std::vector<Lane>& lanes, std::size_t width);

// An SVG document: for every lane, on a scale of its own, a box for every span, in the row of its depth.
std::string TraceSvg(const std::vector<Lane>& lanes);

// An HTML document with that picture and a table of the spans. Everything is in it; nothing is fetched, no script runs.
std::string TraceHtml(const std::vector<Lane>& lanes, const std::string& title);

}  // namespace orvelbox

#endif
