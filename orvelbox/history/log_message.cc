// Finds our own message on a line.
#include "orvelbox/history/log_message.h"

#include <algorithm>
#include <optional>

#include "base/affix.h"
#include "base/log_line.h"
#include "base/log_texts.h"
#include "platform/host/escape.h"
#include "platform/host/log_file.h"

namespace orvelbox {
namespace {

using Kind = LogMessage::Kind;

constexpr std::string_view kRed = "31";

struct Colour {
  std::size_t length = 0;  // 0: there is none
  std::string_view digits;
};

// The colour sequence at the front of `text`, its escape character written as `escape`.
Colour ColourAfter(std::string_view text, std::string_view escape) {
  if (!HasPrefix(text, escape) || text.substr(escape.size(), 1) != "[") return {};
  const std::size_t digits = escape.size() + 1;
  const std::size_t end = text.find_first_not_of("0123456789;", digits);
  if (end == std::string_view::npos || text[end] != 'm') return {};
  return {end + 1, text.substr(digits, end - digits)};
}

// The same as whatever a tool made of the escape character on its way into a file.
Colour ColourAtFront(std::string_view text) {
  for (const std::string_view escape : {"\x1b", "\\e", "\\x1b", "\\x1B", "\\033", "#033", "^["}) {
    if (const Colour colour = ColourAfter(text, escape); colour.length > 0) return colour;
  }
  return {};
}

bool TakeColourOffFront(std::string_view& text, std::string_view* digits) {
  const Colour colour = ColourAtFront(text);
  text.remove_prefix(colour.length);
  *digits = colour.digits;
  return colour.length > 0;
}

bool TakeResetOffEnd(std::string_view& text) {
  constexpr std::size_t kLongest = 8;  // "\x1b[0m", spelled out
  const std::size_t from = text.size() - std::min(text.size(), kLongest);
  for (std::size_t at = from; at < text.size(); ++at) {
    if (ColourAtFront(text.substr(at)).length != text.size() - at) continue;
    text = text.substr(0, at);
    return true;
  }
  return false;
}

void TakeOffEnd(std::string_view& text, std::string_view characters) {
  text = text.substr(0, text.find_last_not_of(characters) + 1);
}

bool IsText(std::string_view line) {
  while (!line.empty()) {
    const auto character = host::FirstCharacter(line);
    if (!character || character->code == 0 || character->code == 0xFFFD) return false;
    line.remove_prefix(character->size);
  }
  return true;
}

bool LooksLikeOurs(std::string_view line) {
  const auto holds = [line](std::string_view sign) { return line.find(sign) != std::string_view::npos; };
  return holds(kPluginTag) || holds(kUtilityTag) || holds(std::string(kPluginUnit) + ": ") || holds("quarnel_util: ") ||
         holds(LOG_TEXT_EXIT);
}

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '~';
}

// Takes the word at the end of `text` off it; empty when there is none.
std::string_view TakeLastWord(std::string_view& text) {
  std::size_t begin = text.size();
  while (begin > 0 && IsWordCharacter(text[begin - 1])) --begin;
  const std::string_view word = text.substr(begin);
  text = text.substr(0, begin);
  return word;
}

bool TakeLast(std::string_view& text, std::string_view end) {
  if (!HasSuffix(text, end)) return false;
  text.remove_suffix(end.size());
  return true;
}

// Is what stands before an arrow "…UNIT: FUNCTION(LINE"? Then both names are noted.
bool ReadSource(std::string_view before, LogMessage& message) {
  const std::string_view number = TakeLastWord(before);
  if (number.empty() || number.find_first_not_of("0123456789") != std::string_view::npos) return false;
  if (!TakeLast(before, "(")) return false;
  const std::string_view function = TakeLastWord(before);
  if (function.empty() || !TakeLast(before, ": ")) return false;
  const std::string_view unit = TakeLastWord(before);
  message.unit = unit;
  message.function = function;
  return !unit.empty();
}

// The message's text without its colours; where it begins with one, it has to end with one.
Kind ReadText(std::string_view text, LogMessage& message) {
  TakeOffEnd(text, "\r\n");
  std::string_view colour;
  const bool coloured = TakeColourOffFront(text, &colour);
  if (colour == kRed) message.error = true;
  const bool ended = TakeResetOffEnd(text);
  TakeOffEnd(text, "\r\n");
  message.text = text;
  return coloured && !ended ? Kind::kDamaged : Kind::kOurs;
}

Kind ReadBody(std::string_view body, LogMessage& message) {
  constexpr std::string_view kArrow = ") > ";
  for (std::size_t at = body.find(kArrow); at != std::string_view::npos; at = body.find(kArrow, at + 1)) {
    if (ReadSource(body.substr(0, at), message)) return ReadText(body.substr(at + kArrow.size()), message);
  }
  return LooksLikeOurs(body) ? Kind::kDamaged : Kind::kForeign;
}

void ReadRecord(const host::LogRecord& record, LogMessage& message) {
  message.time = record.time;
  message.process = std::to_string(record.pid);
  message.error = record.priority == 'E';
  message.kind = ReadBody(record.text, message);
  const bool ours = record.tag == kPluginTag || record.tag == kUtilityTag;
  if (ours && message.unit.empty()) message.kind = Kind::kDamaged;
  if (ours || !message.unit.empty() || !message.error) return;
  message.kind = Kind::kOurs;
  ForEachPiece(record.text, [&](std::string_view piece, bool colour) {
    if (!colour) message.text += piece;
  });
}

}  // namespace

void ForEachPiece(std::string_view text, const std::function<void(std::string_view piece, bool colour)>& take) {
  while (!text.empty()) {
    const std::size_t colour = ColourAfter(text, "\x1b").length;
    const std::size_t length = colour != 0 ? colour : std::min(text.find('\x1b', 1), text.size());
    take(text.substr(0, length), colour != 0);
    text.remove_prefix(length);
  }
}

LogMessage ReadLogLine(std::string_view line, bool whole) {
  LogMessage message;
  if (!IsText(line)) {
    message.kind = LooksLikeOurs(line) ? Kind::kDamaged : Kind::kForeign;
  } else if (const auto record = host::ParseLogRecord(line)) {
    ReadRecord(*record, message);
  } else {
    message.kind = ReadBody(line, message);
  }
  if (!whole && message.kind == Kind::kOurs) message.kind = Kind::kDamaged;
  return message;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!HasPrefix(text, prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

}  // namespace orvelbox
