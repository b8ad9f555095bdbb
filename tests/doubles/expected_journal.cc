// Compares a journal with the expected one, event by event, as texts.
#include "tests/doubles/expected_journal.h"

#include <algorithm>
#include <cstdarg>
#include <iterator>

namespace doubles {

namespace {

constexpr const char* kEntryMark = " +DotNETLog:";
constexpr const char* kExitMark = "-DotNETLog:";
constexpr const char* kCallStep = "call ";
constexpr char kAnyNumber = '\x1a';  // in the text of a step; does not occur in the tests' texts

const char* TagOf(const std::string& unit) { return unit == "morvath" ? "NETCORE_INSTALLER_PLUGIN" : "QUARNEL"; }

bool StartsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

std::string LineText(int line) { return line == kAnyLine ? std::string(1, kAnyNumber) : std::to_string(line); }

// The text with its control characters made visible.
std::string Shown(const std::string& text) {
  std::string shown;
  for (const char c : text) {
    shown += c == '\033' ? "\\e" : c == '\n' ? "\\n" : c == kAnyNumber ? "*" : std::string(1, c);
  }
  return shown;
}

std::string LogText(int log_id, int priority, const std::string& tag, const std::string& text,
                    const std::string& format) {
  return "log " + std::to_string(log_id) + " " + std::to_string(priority) + " " + tag + " " + text + "   [format " +
         format + "]";
}

std::string TextOf(const Event& event) {
  switch (event.kind) {
    case Event::Kind::kLog:
      return LogText(event.log.log_id, event.log.priority, event.log.tag, event.log.text, event.log.format);
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

// Is it the expected text, with any positive number where one is allowed?
bool Meets(const std::string& text, const std::string& expected) {
  std::size_t at = 0;
  for (const char c : expected) {
    if (c != kAnyNumber) {
      if (at == text.size() || text[at++] != c) return false;
      continue;
    }
    const std::size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
    if (end == at || text[at] == '0') return false;
    at = end;
  }
  return at == text.size();
}

// The label at the end of the tracker's line; empty when the message does not begin with `mark`.
std::string LabelOf(const LogLine& line, const std::string& mark) {
  const std::string message = MessageOf(line);
  return StartsWith(message, mark) ? message.substr(mark.size()) : "";
}

std::string Listing(const std::vector<Event>& journal) {
  std::string listing = "The journal:\n";
  for (const Event& event : journal) listing += "  " + Shown(TextOf(event)) + "\n";
  return listing;
}

// The first place where entry lines, spans and exit lines do not match; empty when they all match.
std::string NestingFault(const std::vector<Event>& journal) {
  std::vector<std::string> open;
  const Event* previous = nullptr;
  for (const Event& event : journal) {
    if (event.kind == Event::Kind::kSpanBegin) {
      if (previous == nullptr || LabelOf(previous->log, kEntryMark) != event.text) return TextOf(event);
      open.push_back(event.text);
    } else if (event.kind == Event::Kind::kSpanEnd) {
      if (open.empty() || previous == nullptr || LabelOf(previous->log, kExitMark) != open.back()) {
        return TextOf(event);
      }
      open.pop_back();
    }
    previous = &event;
  }
  return open.empty() ? "" : "never ended: " + open.back();
}

std::vector<Event> Visible(const std::vector<Event>& journal, const Steps& expected) {
  const bool calls = std::any_of(expected.begin(), expected.end(),
                                 [](const std::string& step) { return StartsWith(step, kCallStep); });
  std::vector<Event> visible;
  std::copy_if(journal.begin(), journal.end(), std::back_inserter(visible),
               [&](const Event& event) { return calls || event.kind != Event::Kind::kCall; });
  return visible;
}

std::string FirstDifference(const std::vector<Event>& journal, const Steps& expected) {
  for (std::size_t i = 0; i < journal.size() || i < expected.size(); ++i) {
    const std::string wanted = i < expected.size() ? expected[i] : "(nothing more)";
    const std::string found = i < journal.size() ? TextOf(journal[i]) : "(nothing more)";
    if (Meets(found, wanted)) continue;
    return "Event " + std::to_string(i + 1) + "\n  expected: " + Shown(wanted) + "\n  but was:  " + Shown(found) + "\n";
  }
  return "";
}

}  // namespace

std::string Formatted(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const std::string text = TextOf(format, arguments);
  va_end(arguments);
  return text;
}

Steps Source::Message(const MessageKind& kind, const std::string& format, const std::string& message) const {
  return {LogText(0, kind.priority, TagOf(unit_),
                  unit_ + ": " + function_ + "(" + LineText(line_) + ") > " + kind.colour + message + kReset,
                  kLineStart + std::string(kind.colour) + format + kReset)};
}

Steps Traced(const std::string& unit, const std::string& signature, const Steps& inside, int line) {
  const std::string label = unit + "(" + LineText(line) + ") " + signature;
  return Join({Source("log", "FunctionEntryExitTracker").Trace(" +DotNETLog:%s", label),
               {"span begins: " + label},
               inside,
               Source("log", "~FunctionEntryExitTracker").Trace("-DotNETLog:%s", label),
               {"span ends"}});
}

Steps Traced(const std::string& unit, const std::string& signature, std::initializer_list<Steps> inside, int line) {
  return Traced(unit, signature, Join(inside), line);
}

Steps Restart(const std::string& loader) { return {"restart " + loader}; }

Steps Call(const std::string& text) { return {kCallStep + text}; }

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
  return fault.empty() ? "" : "Trackers and spans do not pair up at: " + Shown(fault) + "\n" + Listing(visible);
}

}  // namespace doubles
