// What is concluded from whole logs, held against the devices that they are the logs of.

#include <nlohmann/json.hpp>
#include <set>

#include "orvelbox/device/cache_text.h"
#include "orvelbox/history/explain.h"
#include "platform/host/json.h"
#include "tests/orvelbox/history/kept_devices.h"

namespace orvelbox {
namespace {

bool IsThere(const host::Device& device, const std::string& path) { return support::IsThere(device.OnDesk(path)); }

std::string CacheName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

bool Holds(const host::Device& device, const std::string& file, const std::string& entry) {
  const auto entries = EntriesOf(ReadCache(device, CacheName(file)));
  return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

// The last findings about each thing: what came before may have been overtaken.
class LastWords {
 public:
  explicit LastWords(const LogFacts& facts) {
    for (const Pass& pass : facts.passes) {
      for (const Finding& finding : pass.findings) Take(finding);
    }
  }

  const std::map<std::string, What>& dlls() const { return dlls_; }
  // By file, then entry.
  const std::map<std::string, std::map<std::string, What>>& entries() const { return entries_; }
  const std::vector<What>& loader() const { return loader_; }
  const std::set<std::string>& told() const { return told_; }

 private:
  void Take(const Finding& finding) {
    told_.insert(NameOf(finding.what));
    switch (finding.what) {
      case What::kRemoved:
      case What::kStays:
      case What::kRemovalFailed:
      case What::kExempt:
        dlls_[finding.path] = finding.what;
        break;
      case What::kErased:
        entries_[finding.path][finding.origin] = finding.what;
        break;
      case What::kRestarted:
      case What::kNotRestarted:
        loader_.push_back(finding.what);
        break;
      default:
        break;
    }
  }

  std::map<std::string, What> dlls_;
  std::map<std::string, std::map<std::string, What>> entries_;
  std::vector<What> loader_;
  std::set<std::string> told_;
};

class WholeLogs : public testing::Test {
 protected:
  static void SetUpTestSuite() { kept() = std::make_unique<KeptDevices>(); }
  static void TearDownTestSuite() { kept().reset(); }
  static std::unique_ptr<KeptDevices>& kept() {
    static std::unique_ptr<KeptDevices> devices;
    return devices;
  }
  void SetUp() override {
    if (kept()->devices().empty()) GTEST_SKIP() << "no integration case runs here";
  }

  template <typename Body>
  static void ForEachDevice(const Body& body) {
    for (const host::Device& device : kept()->devices()) {
      SCOPED_TRACE(device.directory.filename());
      body(device, ReadLogFacts(device.Log()));
    }
  }
};

TEST_F(WholeLogs, are_whole) {
  ForEachDevice([](const host::Device&, const LogFacts& facts) {
    EXPECT_EQ(facts.unclear_lines, 0U);
    for (const Pass& pass : facts.passes) EXPECT_TRUE(pass.begun && pass.ended && !pass.tangled);
  });
}

TEST_F(WholeLogs, tell_all_that_can_become_of_a_package) {
  std::set<std::string> told;
  ForEachDevice([&](const host::Device&, const LogFacts& facts) { told.merge(std::set(LastWords(facts).told())); });
  for (const char* name : {"removed", "kept", "removal-failed", "exempt", "no-duplicates", "refused", "left-alone",
                           "sample", "no-manifest", "run-already", "erased", "written", "restarted", "not-restarted"}) {
    EXPECT_THAT(told, Contains(name));
  }
}

TEST_F(WholeLogs, call_dlls_removed_that_are_gone_and_others_kept) {
  ForEachDevice([](const host::Device& device, const LogFacts& facts) {
    // This case puts one back after its removal.
    const bool put_back = device.directory.filename().string().find("the_same_package_again") == 0;
    const LastWords last(facts);
    for (const auto& [dll, what] : last.dlls()) {
      EXPECT_EQ(IsThere(device, dll), what != What::kRemoved || put_back) << dll;
    }
  });
}

TEST_F(WholeLogs, call_entries_erased_that_are_gone_from_a_file_that_is_there) {
  ForEachDevice([](const host::Device& device, const LogFacts& facts) {
    const LastWords last(facts);
    for (const auto& [file, entries] : last.entries()) {
      EXPECT_TRUE(IsThere(device, file)) << file;
      for (const auto& [entry, what] : entries) EXPECT_FALSE(Holds(device, file, entry)) << entry;
    }
  });
}

TEST_F(WholeLogs, call_the_loader_restarted_as_often_as_it_was) {
  ForEachDevice([](const host::Device& device, const LogFacts& facts) {
    const std::vector<What> loader = LastWords(facts).loader();
    if (loader.empty()) {
      EXPECT_FALSE(fs::exists(device.LoaderRecord()));
      return;
    }
    const auto record = host::ParseJson(ReadFile(device.LoaderRecord()));
    EXPECT_EQ(record["starts"], loader.size());
    EXPECT_EQ(record["error"].is_null(), loader.back() == What::kRestarted) << record["error"];
  });
}

TEST_F(WholeLogs, tell_of_a_search_where_one_was) {
  ForEachDevice([](const host::Device& device, const LogFacts& facts) {
    const std::string name = device.directory.filename().string();
    const std::set<std::string> told = LastWords(facts).told();
    const bool registered = name.find("a_package_that_is_not_registered") != 0;
    EXPECT_TRUE(registered || told.count("no-duplicates") == 0);
    EXPECT_TRUE(told.count("removed") == 0 || told.count("sample") == 0);
  });
}

// A package that is a sample, or has no manifest, may well have an application of a "dotnet-" type.
TEST_F(WholeLogs, give_one_reason_why_a_package_was_left_alone) {
  ForEachDevice([](const host::Device&, const LogFacts& facts) {
    const std::set<std::string> told = LastWords(facts).told();
    EXPECT_LE(told.count("left-alone") + told.count("sample") + told.count("no-manifest"), 1U);
  });
}

TEST_F(WholeLogs, say_of_a_cache_file_that_it_is_gone_where_it_is) {
  std::size_t gone = 0;
  ForEachDevice([&](const host::Device& device, const LogFacts& facts) {
    for (const std::string& line : DescribeStory("LOG", facts)) {
      EXPECT_THAT(line, Not(AnyOf(HasSubstr("old text"), HasSubstr("old cache files"))));
      if (line.find("the cache file is gone") == std::string::npos) continue;
      ++gone;
      EXPECT_FALSE(IsThere(device, std::string(kCacheDirectory) + kTpaFile));
    }
  });
  EXPECT_EQ(gone, 2U);
}

}  // namespace
}  // namespace orvelbox
