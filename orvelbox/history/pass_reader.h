// Reads the messages of one process, or of all where they cannot be told apart, pass by pass. A conclusion that hangs
// on the order of lines is drawn only where they nest as the plug-in's functions do; see FactReader for the log as a
// whole.
#ifndef ORVEL_ORVELBOX_HISTORY_PASS_READER_H_
#define ORVEL_ORVELBOX_HISTORY_PASS_READER_H_

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "orvelbox/history/log_findings.h"
#include "orvelbox/history/log_message.h"

namespace orvelbox {

// Takes from a pass what hangs on the order of its lines.
void LeaveOpen(Pass& pass);

class PassReader {
 public:
  explicit PassReader(std::string process) : process_(std::move(process)) {}

  // Reads a message of ours. False when it names a duplicate that nothing else in the log speaks of.
  bool Read(LineNumber line, const LogMessage& message);
  // There was a damaged line, which may have been one of these.
  void Disturb();
  // Lines are mixed, or missing.
  void Tangle();
  // There is no more to come.
  void End();

  // A pass was begun in the log, and has not ended.
  bool InPass() const { return open_ && !pass_.ended; }
  // How much was found so far, in bytes or so: what keeps a reader from growing without end.
  std::size_t weight() const { return weight_; }
  bool begun() const { return pass_.begun; }
  // The last line of the pass that is being read; 0 where there is none.
  LineNumber last() const { return pass_.last; }
  // The passes that are over, the oldest first.
  std::vector<Pass> TakeOver();

 private:
  // What the last message was, where the next one is to be judged by it.
  enum class Step {
    kNone,
    kFound,
    kOrigin,
    kNamed,
    kCompared,
    kRemoving,
    kStaying,
    kFailing,
    kSearched,
    kSample,
    kNoManifest,
    kRestarting,
    kSaving
  };
  struct Frame {
    std::string function;
    bool has_called = false;  // what it calls but once
  };
  struct Comparison {
    std::string text;
    LineNumber line;
  };

  bool IsEventOpen() const;
  void Begin(LineNumber line, bool begun);
  void Close();
  void Enter(const std::string& function);
  void EnterEvent(const std::string& event);
  void Exit(const std::string& function);
  void Pop(const std::string& function);
  void StepInto(const std::string& function);
  void StepOut(const std::string& function);

  bool Tell(const LogMessage& message);
  bool TellOfDuplicates(const LogMessage& message, bool* taken);
  bool AddDuplicate(const LogMessage& message);
  void Unpair();
  void AddExempt(const LogMessage& message);
  void TellOfStaying(const LogMessage& message);
  void TellOfFailedRemoval(const LogMessage& message);
  bool TellOfPackage(const LogMessage& message);
  void TellOfLeaving(const LogMessage& message);
  bool TellOfCaches(const LogMessage& message);
  void AddErasing(const LogMessage& message, std::string_view text);
  void AddWritten(const LogMessage& message);
  void NamePackage();
  Finding& Add(What what, const LogMessage& message);
  void EndDuplicate(What what);

  std::string process_;
  bool open_ = false;
  Pass pass_;
  std::vector<Frame> frames_;
  Step step_ = Step::kNone;
  Step before_ = Step::kNone;
  LineNumber line_ = 0;
  std::vector<LineNumber> steps_;       // the lines that led to the present step
  std::string origin_;                  // of kOrigin
  std::string file_;                    // of kSaving
  std::deque<Comparison> comparisons_;  // the last ones
  bool debug_ = false;                  // debug messages are in the log
  bool traced_ = false;                 // so are entries and exits
  bool plugin_ = false;                 // so are messages of the plug-in itself, in this pass
  int reports_ = 0;                     // of duplicates that are not complete, their three lines counted
  LineNumber search_line_ = 0;          // where the search of a package begins, while it found nothing
  std::size_t duplicate_ = 0;           // of the findings, that the steps are about
  std::size_t weight_ = 0;
  std::vector<Pass> over_;
};

}  // namespace orvelbox

#endif
