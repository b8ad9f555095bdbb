// The candidate loader and the library that starts it.
#include "platform/host/loader.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>

#include "orvel/aul.h"
#include "platform/host/json.h"
#include "tests/host/frame.h"

namespace host_tests {
namespace {

using json = host::Json;

std::vector<std::string> Parsed(const std::string& text) { return host::ParseCache("/c", text); }

TEST(CacheText, entries_stand_between_the_markers) {
  EXPECT_THAT(Parsed("[START][END]"), IsEmpty());
  EXPECT_THAT(Parsed("[START]/a[END]"), ElementsAre("/a"));
  EXPECT_THAT(Parsed("[START]/b:/a:/b[END]"), ElementsAre("/b", "/a", "/b"));
}

TEST(CacheText, an_empty_first_element_is_accepted_and_no_other) {
  EXPECT_THAT(Parsed("[START]:/a[END]"), ElementsAre("/a"));
  EXPECT_THAT(Parsed("[START]/a::/b[END]"), ElementsAre("/a", "", "/b"));
}

TEST(CacheText, missing_markers_are_damage) {
  for (const char* text : {"", "/a[END]", " [START]/a[END]", "[end]", "[END]"}) {
    EXPECT_EQ("/c: damaged, it does not begin with [START]", ErrorOf([&] { Parsed(text); })) << text;
  }
  for (const char* text : {"[START]", "[START]/a", "[START]/a[END]\n", "[START]/a[EN]"}) {
    EXPECT_EQ("/c: damaged, it does not end with [END]", ErrorOf([&] { Parsed(text); })) << text;
  }
}

class LoaderStart : public DirectoryTest {
 protected:
  LoaderStart() { SetCaches("[START][END]", "[START][END]"); }
  void SetCaches(const std::string& tpa, const std::string& coba) const {
    WriteFile(directory() / "TPA.txt", tpa);
    WriteFile(directory() / "CoBA.txt", coba);
  }
  std::string Path(const std::string& name) const { return (directory() / name).string(); }
};

TEST_F(LoaderStart, loads_what_both_files_list) {
  WriteFile(Path("X.dll"));
  SetCaches("[START]:" + Path("X.dll") + "[END]", "[START]" + directory().string() + "/[END]");
  const auto start = host::StartLoader(directory());
  EXPECT_EQ("", start.error);
  EXPECT_THAT(start.tpa, ElementsAre(Path("X.dll")));
  EXPECT_THAT(start.coba, ElementsAre(directory().string() + "/"));
}

TEST_F(LoaderStart, a_missing_file_is_a_failure) {
  fs::remove(directory() / "CoBA.txt");
  EXPECT_EQ(Path("CoBA.txt") + ": cannot read: " + std::strerror(ENOENT), host::StartLoader(directory()).error);
  fs::remove(directory() / "TPA.txt");
  EXPECT_EQ(Path("TPA.txt") + ": cannot read: " + std::strerror(ENOENT), host::StartLoader(directory()).error);
}

TEST_F(LoaderStart, a_listed_path_that_is_not_there_is_a_failure) {
  SetCaches("[START]" + Path("X.dll") + "[END]", "[START][END]");
  EXPECT_EQ(Path("TPA.txt") + ": lists " + Path("X.dll") + ", which is not there",
            host::StartLoader(directory()).error);
}

TEST_F(LoaderStart, an_entry_that_is_no_absolute_path_is_a_failure) {
  SetCaches("[START][END]", "[START].[END]");
  EXPECT_EQ(Path("CoBA.txt") + ": \".\" is no absolute path", host::StartLoader(directory()).error);
  SetCaches("[START][END]", "[START]/::/[END]");
  EXPECT_EQ(Path("CoBA.txt") + ": \"\" is no absolute path", host::StartLoader(directory()).error);
}

TEST(LoaderRecord, tells_what_was_loaded_and_counts_the_starts) {
  const samples::EnvironmentDevice device;
  host::RecordLoaderStart(device.device(), {{"/a", "/\xff"}, {"/b/"}, ""});
  host::RecordLoaderStart(device.device(), {{}, {}, "broken"});
  const auto record = host::ParseJson(ReadFile(device.device().LoaderRecord()));
  EXPECT_EQ(json({{"TPA", json::array()}, {"CoBA", json::array()}, {"starts", 2}, {"error", "broken"}}), record);
  EXPECT_EQ(host::JsonText(record, 2) + "\n", ReadFile(device.device().LoaderRecord()));
}

TEST(LoaderRecord, paths_need_not_be_utf8) {
  const samples::EnvironmentDevice device;
  host::RecordLoaderStart(device.device(), {{"/a", "/\xff"}, {"/b/"}, ""});
  const auto record = host::ParseJson(ReadFile(device.device().LoaderRecord()));
  EXPECT_EQ(json({"/a", "/\xEF\xBF\xBD"}), record["TPA"]);
  EXPECT_EQ(json({"/b/"}), record["CoBA"]);
  EXPECT_TRUE(record["error"].is_null());
}

TEST(LoaderRecord, a_damaged_record_begins_anew) {
  const samples::EnvironmentDevice device;
  for (const char* damage : {"", "[]", "{}", R"({"starts": "x"})", R"({"starts": -1})"}) {
    WriteFile(device.device().LoaderRecord(), damage);
    host::RecordLoaderStart(device.device(), {});
    EXPECT_EQ(1, host::ParseJson(ReadFile(device.device().LoaderRecord()))["starts"]) << damage;
  }
}

TEST(RestartLoader, starts_the_loader_on_the_device) {
  const samples::EnvironmentDevice device;
  WriteFile(device.device().OnDesk("/opt/usr/globalapps/p/shared/res/X.dll"));
  WriteFile(device.device().OnDesk(kCacheDirectory) / "TPA.txt", "[START]:/opt/usr/globalapps/p/shared/res/X.dll[END]");
  support::WithFixedPaths(device.device().Root(), [&] {
    EXPECT_EQ(0, aul_restart_loader("dotnet-loader-inhouse"));
    EXPECT_EQ(0, aul_restart_loader("dotnet-loader-inhouse"));
    const auto record = host::ParseJson(ReadFile(device.device().LoaderRecord()));
    EXPECT_EQ(json({"/opt/usr/globalapps/p/shared/res/X.dll"}), record["TPA"]);
    EXPECT_EQ(json::array(), record["CoBA"]);
    EXPECT_EQ(2, record["starts"]);
    EXPECT_TRUE(record["error"].is_null());
  });
}

TEST(RestartLoader, a_loader_that_cannot_start_is_a_failure_told_in_one_line) {
  const samples::EnvironmentDevice device;
  fs::remove(device.device().OnDesk(kCacheDirectory) / "CoBA.txt");
  support::WithFixedPaths(device.device().Root(), [&] {
    int result = 0;
    const std::string errors = support::StandardErrorOf([&] { result = aul_restart_loader("dotnet-loader-inhouse"); });
    EXPECT_LT(result, 0);
    EXPECT_EQ(
        "dotnet-loader-inhouse: /opt/usr/home/owner/share/dotnet/CoBA.txt: cannot read: No such file or directory\n",
        errors);
    const auto record = host::ParseJson(ReadFile(device.device().LoaderRecord()));
    EXPECT_EQ("/opt/usr/home/owner/share/dotnet/CoBA.txt: cannot read: No such file or directory", record["error"]);
  });
}

TEST(RestartLoader, only_the_one_loader_is_known) {
  const samples::EnvironmentDevice device;
  for (const char* name : {"", "dotnet-loader", "../platform/host/dotnet-loader-inhouse", "dotnet-loader-inhouse "}) {
    EXPECT_LT(aul_restart_loader(name), 0) << name;
  }
  EXPECT_LT(aul_restart_loader(nullptr), 0);
  EXPECT_FALSE(fs::exists(device.device().LoaderRecord()));
}

TEST(RestartLoader, without_a_device_the_loader_does_not_start) {
  unsetenv(host::kDeviceVariable);
  int result = 0;
  const std::string errors = support::StandardErrorOf([&] { result = aul_restart_loader("dotnet-loader-inhouse"); });
  EXPECT_LT(result, 0);
  EXPECT_EQ("dotnet-loader-inhouse: ORVELBOX_DEVICE names no device to start on\n", errors);
}

}  // namespace
}  // namespace host_tests
