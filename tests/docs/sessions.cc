// Reads documents line by line.
#include "tests/docs/sessions.h"

#include <regex>
#include <stdexcept>
#include <utility>

#include "tests/support/files.h"

namespace docs {
namespace {

constexpr const char* kAnything = "…";
// Blocks that hold no commands.
constexpr const char* kReadOnly[] = {"```text", "```xml", "```json", "```yaml"};

bool BeginsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

int StatusOf(const std::string& command) {
  std::smatch match;
  return std::regex_search(command, match, std::regex("#.*exit status ([0-9]+)")) ? std::stoi(match[1]) : 0;
}

// The word that ends the here-document of the command line; empty when there is none.
std::string EndOfInput(const std::string& command) {
  std::smatch match;
  return std::regex_search(command, match, std::regex("<<'([A-Z]+)'")) ? match[1].str() : "";
}

class Reader {
 public:
  void Read(std::size_t number, const std::string& line) {
    if (in_session_) {
      ReadInSession(number, line);
    } else if (in_block_) {
      in_block_ = line != "```";
    } else if (line == "```console") {
      in_session_ = true;
      first_ = true;
    } else if (BeginsWith(line, "```")) {
      RequireReadOnly(line);
      in_block_ = true;
    } else {
      ReadHidden(number, line);
    }
  }

  std::vector<Command> commands() && {
    if (in_session_ || in_block_) throw std::runtime_error("a block does not end");
    return std::move(commands_);
  }

 private:
  static void RequireReadOnly(const std::string& line) {
    for (const char* known : kReadOnly) {
      if (line == known) return;
    }
    throw std::runtime_error("\"" + line + "\" begins no session and nothing to read");
  }

  void ReadHidden(std::size_t number, const std::string& line) {
    std::smatch match;
    if (std::regex_match(line, match, std::regex("<!-- before: (.*) -->")))
      commands_.push_back({number, match[1], 0, false, ""});
  }

  void ReadInSession(std::size_t number, const std::string& line) {
    if (!end_of_input_.empty()) {
      commands_.back().text += "\n" + line;
      if (line == end_of_input_) end_of_input_.clear();
    } else if (line == "```") {
      in_session_ = false;
    } else if (BeginsWith(line, "$ ")) {
      commands_.push_back({number, line.substr(2), StatusOf(line), false, ""});
      end_of_input_ = EndOfInput(line);
      first_ = false;
    } else {
      ReadOutput(line);
    }
  }

  void ReadOutput(const std::string& line) {
    if (first_) throw std::runtime_error("a session begins with \"$ \" and a command");
    commands_.back().shows_output = true;
    commands_.back().output += line + "\n";
  }

  std::vector<Command> commands_;
  std::string end_of_input_;
  bool in_session_ = false;
  bool in_block_ = false;
  bool first_ = false;
};

// A regular expression that matches exactly this text.
std::string Literal(const std::string& text) {
  return std::regex_replace(text, std::regex(R"([.^$|()\[\]{}*+?\\])"), R"(\$&)");
}

}  // namespace

std::vector<Command> ReadSessions(const std::string& markdown) {
  Reader reader;
  std::size_t number = 0;
  try {
    for (const std::string& line : support::Lines(markdown)) reader.Read(++number, line);
    return std::move(reader).commands();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
  }
}

bool Matches(const std::string& output, const std::string& shown) {
  std::string pattern;
  for (const std::string& line : support::Lines(shown)) {
    if (line == kAnything) {
      pattern += "(?:[^\\n]*\\n)*?";
    } else {
      pattern += std::regex_replace(Literal(line), std::regex(kAnything), "[^\\n]*") + "\\n";
    }
  }
  return std::regex_match(output, std::regex(pattern));
}

}  // namespace docs
