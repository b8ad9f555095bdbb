// Comparison of a journal with what is expected.
#include "tests/doubles/expected_journal.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

namespace doubles {

namespace {

constexpr const char* kEntryMark = " +DotNETLog:";
constexpr const char* kExitMark = "-DotNETLog:";
constexpr const char* kCallStep = "call ";

const char* TagOf(const std::string& unit) { return unit == "morvath" ? "NETCORE_INSTALLER_PLUGIN" : "QUARNEL"; }

bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

// The text with its control characters made visible.
std::string Shown(const std::string& text) {
  std::string shown;
  for (const char c : text) {
    if (c == '\033') {
      shown += "\\e";
    } else if (c == '\n') {
      shown += "\\n";
    } else {
      shown += c;
    }
  }
  return shown;
}

std::string Describe(const Event& event) {
  switch (event.kind) {
    case Event::Kind::kLog:
      return "log " + std::to_string(event.log.priority) + " " + event.log.tag + " " + Shown(event.log.text) +
             "   [format " + Shown(event.log.format) + "]";
    case Event::Kind::kSpanBegin:
      return "span begins: " + event.text;
    case Event::Kind::kSpanEnd:
      return "span ends";
    case Event::Kind::kRestart:
      return "restart " + event.text;
    case Event::Kind::kCall:
      return kCallStep + event.text;
  }
  return "";
}

// Everything of a log line but its format and message.
bool HasFrame(const Event& event, const MessageKind& kind, const std::string& unit, const std::string& function) {
  return event.kind == Event::Kind::kLog && event.log.log_id == 0 && event.log.priority == kind.priority &&
         event.log.tag == TagOf(unit) && event.log.unit == unit && event.log.function == function && event.log.line > 0;
}

bool HasText(const LogLine& line, const MessageKind& kind, const std::string& message) {
  return line.text == PositionOf(line) + kind.colour + message + kReset;
}

// Is `label` "unit(line) signature"?
bool IsLabel(const std::string& label, const std::string& unit, int line, const std::string& signature) {
  const std::string end = ") " + signature;
  if (!StartsWith(label, unit + "(") || label.size() < unit.size() + 1 + end.size()) return false;
  if (label.compare(label.size() - end.size(), end.size(), end) != 0) return false;
  const std::string number = label.substr(unit.size() + 1, label.size() - end.size() - unit.size() - 1);
  if (line != kAnyLine) return number == std::to_string(line);
  return !number.empty() && number.front() != '0' && number.find_first_not_of("0123456789") == std::string::npos;
}

// The label that the tracker's line ends in, or nothing ("") when the message does not begin with `mark`.
std::string LabelOf(const LogLine& line, const std::string& mark) {
  const std::string message = MessageOf(line);
  return StartsWith(message, mark) ? message.substr(mark.size()) : "";
}

Step TrackerLine(const std::string& function, const std::string& mark, const std::string& unit,
                 const std::string& signature, int line) {
  return {"log 3 QUARNEL log: " + function + "(*) > \\e[90m" + mark + unit + "(" +
              (line == kAnyLine ? "*" : std::to_string(line)) + ") " + signature + "\\e[0m\\n",
          [=](const Event& event) {
            if (!HasFrame(event, kTrace, "log", function)) return false;
            const std::string label = LabelOf(event.log, mark);
            return IsLabel(label, unit, line, signature) && HasText(event.log, kTrace, mark + label) &&
                   StartsWith(event.log.format, std::string(kLineStart) + kTrace.colour);
          }};
}

std::string Listing(const std::vector<Event>& journal) {
  std::string listing = "The journal:\n";
  for (const Event& event : journal) listing += "  " + Describe(event) + "\n";
  return listing;
}

// The first place where entry lines, spans and exit lines do not pair up; empty when they all do.
std::string NestingFault(const std::vector<Event>& journal) {
  std::vector<std::string> open;
  const Event* previous = nullptr;
  for (const Event& event : journal) {
    if (event.kind == Event::Kind::kSpanBegin) {
      if (previous == nullptr || LabelOf(previous->log, kEntryMark) != event.text) return Describe(event);
      open.push_back(event.text);
    } else if (event.kind == Event::Kind::kSpanEnd) {
      if (open.empty() || previous == nullptr || LabelOf(previous->log, kExitMark) != open.back()) {
        return Describe(event);
      }
      open.pop_back();
    }
    previous = &event;
  }
  return open.empty() ? "" : "never ended: " + open.back();
}

std::vector<Event> Visible(const std::vector<Event>& journal, const Steps& expected) {
  for (const Step& step : expected) {
    if (StartsWith(step.description, kCallStep)) return journal;
  }
  std::vector<Event> visible;
  for (const Event& event : journal) {
    if (event.kind != Event::Kind::kCall) visible.push_back(event);
  }
  return visible;
}

std::string FirstDifference(const std::vector<Event>& journal, const Steps& expected) {
  for (std::size_t i = 0; i < journal.size() || i < expected.size(); ++i) {
    const std::string wanted = i < expected.size() ? expected[i].description : "(nothing more)";
    const std::string found = i < journal.size() ? Describe(journal[i]) : "(nothing more)";
    if (i < journal.size() && i < expected.size() && expected[i].meets(journal[i])) continue;
    return "Event " + std::to_string(i + 1) + "\n  expected: " + wanted + "\n  but was:  " + found + "\n";
  }
  return "";
}

}  // namespace

std::string Formatted(const char* format, ...) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  va_list arguments;
  va_start(arguments, format);
  va_list measured;
  va_copy(measured, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, measured);
  va_end(measured);
  std::vector<char> text(static_cast<std::size_t>(length) + 1);
  std::vsnprintf(text.data(), text.size(), format, arguments);
  va_end(arguments);
#pragma GCC diagnostic pop
  return text.data();
}

Steps Source::Message(const MessageKind& kind, const std::string& format, const std::string& message) const {
  const std::string whole_format = kLineStart + std::string(kind.colour) + format + kReset;
  const std::string shown_line = line_ == kAnyLine ? "*" : std::to_string(line_);
  return {{"log " + std::to_string(kind.priority) + " " + TagOf(unit_) + " " + unit_ + ": " + function_ + "(" +
               shown_line + ") > " + Shown(kind.colour + message + kReset) + "   [format " + Shown(whole_format) + "]",
           [=, unit = unit_, function = function_, line = line_](const Event& event) {
             return HasFrame(event, kind, unit, function) && (line == kAnyLine || event.log.line == line) &&
                    event.log.format == whole_format && HasText(event.log, kind, message);
           }}};
}

Steps Traced(const std::string& unit, const std::string& signature, const Steps& inside, int line) {
  Steps steps;
  steps.push_back(TrackerLine("FunctionEntryExitTracker", kEntryMark, unit, signature, line));
  steps.push_back({"span begins: " + signature, [=](const Event& event) {
                     return event.kind == Event::Kind::kSpanBegin && IsLabel(event.text, unit, line, signature);
                   }});
  steps.insert(steps.end(), inside.begin(), inside.end());
  steps.push_back(TrackerLine("~FunctionEntryExitTracker", kExitMark, unit, signature, line));
  steps.push_back({"span ends", [](const Event& event) { return event.kind == Event::Kind::kSpanEnd; }});
  return steps;
}

Steps Traced(const std::string& unit, const std::string& signature, std::initializer_list<Steps> inside, int line) {
  return Traced(unit, signature, Join(inside), line);
}

Steps Restart(const std::string& loader) {
  return {{"restart " + loader,
           [=](const Event& event) { return event.kind == Event::Kind::kRestart && event.text == loader; }}};
}

Steps Call(const std::string& text) {
  return {
      {kCallStep + text, [=](const Event& event) { return event.kind == Event::Kind::kCall && event.text == text; }}};
}

Steps Join(std::initializer_list<Steps> parts) {
  Steps all;
  for (const Steps& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

std::string Difference(const std::vector<Event>& journal, const Steps& expected) {
  const std::vector<Event> visible = Visible(journal, expected);
  const std::string difference = FirstDifference(visible, expected);
  if (!difference.empty()) return difference + Listing(visible);
  const std::string fault = NestingFault(visible);
  return fault.empty() ? "" : "Trackers and spans do not pair up at: " + fault + "\n" + Listing(visible);
}

}  // namespace doubles
