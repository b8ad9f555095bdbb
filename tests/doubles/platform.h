// The state of the platform's doubles: what they answer, and the journal of what was asked of them. How a journal is
// compared with what was expected stands in expected_journal.h.
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
  LogLine log;       // of kLog only
};

// What a handle of the package libraries stands for.
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
  // What the platform answers.
  std::vector<Package> packages;
  std::optional<std::string> read_write_root = "/opt/usr/globalapps";
  std::map<std::string, std::string> labels;  // by path
  uid_t target_uid = 0;

  // Everything that was asked, in order. While `keeps_journal` is false, nothing: for whoever asks without end.
  std::vector<Event> journal;
  bool keeps_journal = true;
  // Called (if set) with every event before its caller goes on: the moment to change things in the
  // middle of what is tested. It may set itself anew.
  std::function<void(const Event&)> on_event;
  // Every misuse of a handle: one that is null, of another kind, destroyed before or a negative descriptor.
  std::vector<std::string> misuses;

  // Makes the next call of `function` answer `code` and do nothing else.
  void FailNext(const std::string& function, int code);
  // Makes the next call of `function` answer success with a null handle.
  void GiveNullNext(const std::string& function);

  // Records of the kind that were handed out and not destroyed.
  int Alive(Record::Kind kind) const;
  // Records of the kind that were handed out.
  int Created(Record::Kind kind) const;
  // Records of any kind that were handed out and not destroyed.
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
  // The living record behind `handle`, or null after noting a misuse of `function`.
  Record* Use(const std::string& function, void* handle, Record::Kind kind);
  // Destroys the record: its texts are overwritten, so that nobody reads them by luck. Returns 0, or -1 for a misuse.
  int Destroy(const std::string& function, void* handle, Record::Kind kind);

 private:
  std::map<std::string, int> failures_;
  std::map<std::string, bool> nulls_;
  std::vector<std::unique_ptr<Record>> records_;
};

// The platform as it is now.
Platform& Current();

// Starts afresh: no packages, an empty journal.
Platform& Reset();

}  // namespace doubles

#endif
