// A trace as lines of text: a bar and a name for every span.
#ifndef ORVEL_ORVELBOX_TRACE_TIMELINE_H_
#define ORVEL_ORVELBOX_TRACE_TIMELINE_H_

#include "orvelbox/trace/spans.h"

namespace orvelbox {

// Microseconds as milliseconds with three decimals.
std::string Milliseconds(std::int64_t microseconds);
// "process 7, thread 8", the thread only where it is not the process's first.
std::string Title(const Lane& lane);

// The lines of a timeline, every lane on a scale of its own. Lines are at most `width` columns wide; 0: as wide as they
// need.
std::vector<std::string> DrawTimeline(const std::vector<Lane>& lanes, std::size_t width);

}  // namespace orvelbox

#endif
