// Reading a command line that is not complete, and answering a shell in time.
#include "orvelbox/cli/completion.h"

#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>

#include "orvelbox/desk/output.h"

namespace orvelbox {
namespace {

// A person notices what takes longer than a tenth of a second, in which the program has to start as well.
constexpr suseconds_t kPatienceMicroseconds = 75'000;

bool BeginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

template <typename Facts>
const Facts* Named(const std::vector<Facts>& all, const std::string& name) {
  const auto found = std::find_if(all.begin(), all.end(), [&](const Facts& facts) { return facts.name == name; });
  return found == all.end() ? nullptr : &*found;
}

template <typename Facts>
void Append(const std::vector<Facts>& all, Candidates& candidates) {
  for (const Facts& facts : all) candidates.push_back({facts.name, facts.description});
}

// As the shell will read it.
std::string WithHome(const std::string& path) {
  const char* home = std::getenv("HOME");
  return home != nullptr && BeginsWith(path, "~/") ? home + path.substr(1) : path;
}

// Follows the words of a command line, whole or not.
class Line {
 public:
  Line(const CommandFacts& program, const GlobalOptions& global)
      : program_(program), command_(&program), global_(global) {}

  void Take(const std::string& word) {
    if (open_ != nullptr) {
      Give(*open_, word);
      open_ = nullptr;
    } else if (word == "--") {
      only_arguments_ = true;
    } else if (IsOption(word)) {
      TakeOption(word);
    } else if (const CommandFacts* below = only_arguments_ ? nullptr : Named(command_->commands, word)) {
      command_ = below;
    } else {
      ++arguments_;
    }
  }

  // What the next word may be, when it begins with what stands in `word`.
  Offer Next(const std::string& word) const {
    if (open_ != nullptr) return Values(*open_);
    if (IsOption(word)) return OptionsFor(word);
    const std::vector<Option>& all = command_->arguments;
    const bool repeats = !all.empty() && std::holds_alternative<std::vector<std::string>*>(all.back().target);
    const std::size_t position = repeats ? std::min(arguments_, all.size() - 1) : arguments_;
    Offer offer = position < all.size() ? Values(all[position]) : Offer();
    if (arguments_ == 0 && !only_arguments_) Append(command_->commands, offer.candidates);
    return offer;
  }

 private:
  bool IsOption(const std::string& word) const { return !only_arguments_ && BeginsWith(word, "-"); }

  const Option* Find(const std::string& name) const {
    const Option* own = Named(command_->options, name);
    return own != nullptr ? own : Named(program_.options, name);
  }

  static void Give(const Option& option, const std::string& value) {
    if (const auto* text = std::get_if<std::string*>(&option.target)) **text = WithHome(value);
  }

  void TakeOption(const std::string& word) {
    const std::size_t equals = word.find('=');
    const Option* option = Find(word.substr(0, equals));
    if (option == nullptr || option->value.empty()) return;
    if (equals == std::string::npos) {
      open_ = option;
    } else {
      Give(*option, word.substr(equals + 1));
    }
  }

  Offer OptionsFor(const std::string& word) const {
    const std::size_t equals = word.find('=');
    if (equals != std::string::npos) {
      const Option* option = Find(word.substr(0, equals));
      return option == nullptr ? Offer() : Values(*option, word.substr(0, equals + 1));
    }
    Offer offer;
    Append(command_->options, offer.candidates);
    for (const Option& option : program_.options) {
      if (Find(option.name) == &option && command_ != &program_) Append<Option>({option}, offer.candidates);
    }
    return offer;
  }

  // The values of an option, with what stands before them in the word.
  Offer Values(const Option& option, const std::string& before = "") const {
    Offer offer{{}, option.is_path};
    for (const std::string& choice : option.choices) offer.candidates.push_back({choice, ""});
    try {
      if (option.candidates) offer.candidates = option.candidates(global_);
    } catch (const std::exception&) {  // no device, or a damaged one: whoever runs the command will hear of it
    }
    for (Candidate& candidate : offer.candidates) candidate.text.insert(0, before);
    return offer;
  }

  const CommandFacts& program_;
  const CommandFacts* command_;  // what the words ask for, or the program
  const GlobalOptions& global_;
  const Option* open_ = nullptr;  // its value comes next
  std::size_t arguments_ = 0;
  bool only_arguments_ = false;
};

void SetTimer(suseconds_t microseconds) {
  const itimerval timer{{}, {0, microseconds}};
  setitimer(ITIMER_REAL, &timer, nullptr);
}

// While this lives, the program ends in time and without a word, whatever it waits for: a database, a file system.
class TimeLimit {
 public:
  TimeLimit() {
    std::signal(SIGALRM, [](int) { _exit(kDone); });
    SetTimer(kPatienceMicroseconds);
  }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() { SetTimer(0); }
};

// The lines that a shell reads; `left_out` is how much of each candidate it has kept.
std::string AnswerOf(const Offer& offer, std::size_t left_out) {
  std::string answer;
  for (const Candidate& candidate : offer.candidates) {
    answer += candidate.text.substr(left_out);
    if (!candidate.description.empty()) answer += "\t" + Printable(candidate.description);
    answer += '\n';
  }
  return offer.files ? answer + "/\n" : answer;
}

std::string Answer(const Commands& commands, std::string_view line, std::string_view kept) {
  const TimeLimit limit;
  GlobalOptions global;
  const CommandFacts program = DescribeProgram(commands, global);
  std::vector<std::string> words = ShellWords(line);
  words.erase(words.begin());
  if (words.empty()) return "";
  const std::size_t left_out = std::min(ShellWords(kept).back().size(), words.back().size());
  return AnswerOf(OfferFor(program, global, words), left_out);
}

}  // namespace

std::vector<std::string> ShellWords(std::string_view line) {
  std::vector<std::string> words(1);
  bool begun = false;
  char quote = '\0';
  for (; !line.empty(); line.remove_prefix(1)) {
    const bool blank = quote == '\0' && (line.front() == ' ' || line.front() == '\t');
    if (blank && begun) words.emplace_back();
    begun = !blank;
    if (blank) continue;
    if (line.front() == quote) {
      quote = '\0';
    } else if (quote == '\0' && (line.front() == '\'' || line.front() == '"')) {
      quote = line.front();
    } else {
      if (line.front() == '\\' && quote != '\'' && line.size() > 1) line.remove_prefix(1);
      words.back() += line.front();
    }
  }
  return words;
}

Offer OfferFor(const CommandFacts& program, const GlobalOptions& global, const std::vector<std::string>& words) {
  const std::string& word = words.back();
  Line line(program, global);
  std::for_each(words.begin(), words.end() - 1, [&](const std::string& before) { line.Take(before); });
  Offer offer = line.Next(word);
  Candidates& all = offer.candidates;
  const auto unfit = [&](const Candidate& candidate) {
    return !BeginsWith(candidate.text, word) || Printable(candidate.text) != candidate.text;
  };
  all.erase(std::remove_if(all.begin(), all.end(), unfit), all.end());
  return offer;
}

// The time is over for what is found out, not for what is said of it: half an answer would be taken for the whole one.
void Complete(const Commands& commands, std::string_view line, std::string_view kept) {
  SayPart(Answer(commands, line, kept));
}

}  // namespace orvelbox
