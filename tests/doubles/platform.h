// The state of the platform's doubles: their answers, and the journal of the calls. expected_journal.h compares
// journals.
#ifndef TESTS_DOUBLES_PLATFORM_H_
#define TESTS_DOUBLES_PLATFORM_H_

#include <sys/types.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/doubles/log_line.h"

namespace doubles {

struct MetadataEntry {
  std::string key;
  std::string value;
};

struct Application {
  std::string id;
  std::optional<std::string> root;  // nothing: the record's root path is null
  std::vector<MetadataEntry> metadata;
  std::string exec;
};

struct Package {
  std::string id;
  std::vector<Application> applications;  // the first one is the main application
  std::vector<std::string> privileges;
  std::string type = "opk";
};

// A package with one application, both of that id.
Package MakePackage(const std::string& id, const std::string& root);

struct Event {
  enum class Kind { kLog, kSpanBegin, kSpanEnd, kRestart, kCall };
  Kind kind;
  std::string text;  // the span's name, the loader's name, or the call: "function(argument, argument)"
  LogLine log;       // only for kLog
};

// What a handle of the package libraries refers to.
struct Record {
  enum class Kind { kPackageInfo, kFilter, kApplication, kPackage };
  Kind kind;
  Package package;
  Application application;
  std::vector<MetadataEntry> demands;  // of a filter
  bool alive = true;
};

class Platform {
 public:
  // The platform's answers.
  std::vector<Package> packages;
  std::optional<std::string> read_write_root = "/opt/usr/globalapps";
  std::map<std::string, std::string> labels;  // by path
  uid_t target_uid = 0;

  // All calls in order. Not recorded while `keeps_journal` is false, for tests with very many calls.
  std::vector<Event> journal;
  bool keeps_journal = true;
  // Called (if set) with every event before the caller continues, so that a test can change things in the middle of a
  // call. It may replace itself.
  std::function<void(const Event&)> on_event;
  // Every misuse: a handle that is null, of another kind or destroyed, or a negative descriptor.
  std::vector<std::string> misuses;

  // Makes the next call of `function` return `code` and do nothing else.
  void FailNext(const std::string& function, int code);
  // Makes the next call of `function` succeed with a null handle.
  void GiveNullNext(const std::string& function);

  // The number of records of the kind that exist.
  int Alive(Record::Kind kind) const;
  // The number of records of the kind that were created.
  int Created(Record::Kind kind) const;
  // The number of records of any kind that exist.
  int Alive() const;

  // The texts of the kCall events that begin with `prefix`, in order.
  std::vector<std::string> Calls(const std::string& prefix) const;
  // The texts of the log messages, in order, without the parts that every line has.
  std::vector<std::string> Messages() const;

  // For the doubles themselves.
  void RecordEvent(const Event& event);
  void RecordCall(const std::string& text);
  std::optional<int> TakeFailure(const std::string& function);
  bool TakeNull(const std::string& function);
  const Package* FindPackage(const std::string& id) const;
  const Application* FindApplication(const std::string& id) const;
  Record* Create(Record record);
  // The existing record for `handle`, or null after recording a misuse by `function`.
  Record* Use(const std::string& function, void* handle, Record::Kind kind);
  // Destroys the record and overwrites its texts, so that a later read is noticed. Returns 0, or -1 for a misuse.
  int Destroy(const std::string& function, void* handle, Record::Kind kind);

 private:
  std::map<std::string, int> failures_;
  std::map<std::string, bool> nulls_;
  std::vector<std::unique_ptr<Record>> records_;
};

// The platform as it is now.
Platform& Current();

// Resets everything: no packages, an empty journal.
Platform& Reset();

}  // namespace doubles

#endif
