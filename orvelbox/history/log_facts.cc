// Reads the facts of an operation out of the plug-in's messages.
#include <algorithm>

#include "base/affix.h"
#include "base/log_texts.h"
#include "orvelbox/history/log.h"

namespace orvelbox {
namespace {

// The length of the colour sequence at the front of `text`; 0 when there is none.
std::size_t ColourLength(std::string_view text) {
  if (text.substr(0, 2) != "\x1b[") return 0;
  const std::size_t end = text.find_first_not_of("0123456789;", 2);
  return end != std::string_view::npos && text[end] == 'm' ? end + 1 : 0;
}

std::string WithoutColours(std::string_view text) {
  std::string plain;
  ForEachPiece(text, [&](std::string_view piece, bool colour) {
    if (!colour) plain += piece;
  });
  const std::size_t end = plain.find_last_not_of('\n');
  return plain.substr(0, end == std::string::npos ? 0 : end + 1);
}

// Collects the facts message by message; the three lines about a duplicate come one after the other.
class Collector {
 public:
  void AddError(const std::string& text, const std::string& time) {
    std::vector<Duplicate>& all = facts_.duplicates;
    if (text == LOG_TEXT_DUPLICATE_FOUND) {
      found_ = {"", "", false, time};
    } else if (HasPrefix(text, LOG_TEXT_ORIGIN)) {
      found_.origin = text.substr(std::string_view(LOG_TEXT_ORIGIN).size());
    } else if (HasPrefix(text, LOG_TEXT_DUPLICATED)) {
      found_.duplicated = text.substr(std::string_view(LOG_TEXT_DUPLICATED).size());
      AddDuplicate();
    } else if (text == LOG_TEXT_READ_WRITE) {
      if (!all.empty()) all.back().origin_read_write = true;
    } else if (HasPrefix(text, LOG_TEXT_GUIDE)) {
      facts_.guide = text;
    } else if (text == LOG_TEXT_RESTART_FAILED) {
      facts_.restart_failed = true;
    } else {
      facts_.errors.push_back(text);
    }
  }

  void AddInformation(const std::string& text) {
    if (text == LOG_TEXT_NOT_INHOUSE) facts_.not_inhouse = true;
  }

  LogFacts Take() { return std::move(facts_); }

 private:
  // A file that was examined twice is listed once, as it was found last.
  void AddDuplicate() {
    auto& all = facts_.duplicates;
    const auto same = [this](const Duplicate& other) { return other.duplicated == found_.duplicated; };
    all.erase(std::remove_if(all.begin(), all.end(), same), all.end());
    all.push_back(found_);
  }

  LogFacts facts_;
  Duplicate found_;
};

}  // namespace

void ForEachPiece(std::string_view text, const std::function<void(std::string_view piece, bool colour)>& take) {
  while (!text.empty()) {
    const std::size_t colour = ColourLength(text);
    const std::size_t length = colour != 0 ? colour : std::min(text.find('\x1b', 1), text.size());
    take(text.substr(0, length), colour != 0);
    text.remove_prefix(length);
  }
}

std::optional<PluginMessage> ParsePluginMessage(std::string_view record_text) {
  constexpr std::string_view kArrow = ") > ";
  const std::size_t name = record_text.find(": ");
  const std::size_t arrow = record_text.find(kArrow);
  const std::size_t bracket = record_text.find('(');
  if (arrow == std::string_view::npos || name > bracket || bracket > arrow) return std::nullopt;
  PluginMessage message;
  message.function = record_text.substr(name + 2, bracket - name - 2);
  message.text = WithoutColours(record_text.substr(arrow + kArrow.size()));
  return message;
}

LogFacts InterpretLog(const std::vector<host::LogRecord>& records) {
  Collector collector;
  for (const host::LogRecord& record : records) {
    const std::optional<PluginMessage> message = ParsePluginMessage(record.text);
    const std::string text = message ? message->text : WithoutColours(record.text);
    if (record.priority == 'E') collector.AddError(text, record.time);
    if (record.priority == 'I') collector.AddInformation(text);
  }
  return collector.Take();
}

std::vector<host::LogRecord> ParseLog(std::string_view text) {
  std::vector<host::LogRecord> records;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (auto record = host::ParseLogRecord(text.substr(0, end))) records.push_back(*std::move(record));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return records;
}

}  // namespace orvelbox
