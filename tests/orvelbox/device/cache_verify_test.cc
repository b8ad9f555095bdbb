// Each fault of a cache file separately, and no report without a fault.

#include <nlohmann/json.hpp>
#include <set>

#include "orvelbox/device/cache_text.h"
#include "platform/host/json.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

using testing::Field;

host::Package PackageAt(const std::string& id, const std::string& root) {
  host::Package package;
  package.id = id;
  package.root = root;
  return package;
}

const std::vector<host::Package> kPackages = {PackageAt("a", "/apps/a"), PackageAt("b", "/apps/b")};

std::vector<std::string> KindsIn(const CacheText& text, const std::set<std::string>& gone = {}) {
  std::vector<std::string> kinds;
  const auto is_there = [&](const std::string& path) { return gone.count(path) == 0; };
  for (const CacheFinding& finding : VerifyCache("TPA.txt", text, kPackages, is_there)) {
    EXPECT_EQ(finding.file, "TPA.txt");
    EXPECT_THAT(finding.text, HasSubstr("; ")) << "the way out";
    kinds.push_back(finding.kind + " " + finding.entry);
  }
  return kinds;
}

TEST(CacheVerify, sound_files_have_no_findings) {
  EXPECT_THAT(KindsIn("[START][END]"), IsEmpty());
  EXPECT_THAT(KindsIn("[START]:/apps/a/x.dll:/apps/b/y.dll[END]"), IsEmpty());
}

TEST(CacheVerify, a_missing_file_and_damaged_markers_are_told) {
  EXPECT_THAT(KindsIn(std::nullopt), ElementsAre("missing "));
  EXPECT_THAT(KindsIn(""), ElementsAre("markers "));
  EXPECT_THAT(KindsIn("[START]/apps/a/x.dll"), ElementsAre("markers "));
}

TEST(CacheVerify, an_entry_whose_file_is_gone_is_told) {
  EXPECT_THAT(KindsIn("[START]/apps/a/x.dll:/apps/a/y.dll[END]", {"/apps/a/y.dll"}), ElementsAre("gone /apps/a/y.dll"));
}

TEST(CacheVerify, an_entry_of_no_installed_package_is_told) {
  EXPECT_THAT(KindsIn("[START]/apps/ab/x.dll:relative[END]"),
              ElementsAre("not-installed /apps/ab/x.dll", "not-installed relative"));
}

TEST(CacheVerify, an_entry_that_is_there_more_than_once_is_told_once) {
  EXPECT_THAT(KindsIn("[START]/apps/a/x:/apps/b/x:/apps/a/x[END]"), ElementsAre("twice /apps/a/x"));
  EXPECT_THAT(KindsIn("[START]/apps/a/x:/apps/a/x:/apps/a/x[END]"), ElementsAre("twice /apps/a/x"));
}

TEST(CacheVerify, damaged_files_are_looked_at_all_the_same) {
  EXPECT_THAT(KindsIn("/apps/z/x"), ElementsAre("markers ", "not-installed /apps/z/x"));
}

TEST(CacheVerify, a_root_that_begins_another_is_a_hazard) {
  EXPECT_THAT(FindPrefixHazards(kPackages), IsEmpty());
  EXPECT_THAT(FindPrefixHazards({PackageAt("ab", "/apps/ab"), PackageAt("a", "/apps/a"), PackageAt("c", "/c")}),
              ElementsAre(AllOf(Field(&CacheFinding::kind, "prefix"), Field(&CacheFinding::entry, "/apps/a"),
                                Field(&CacheFinding::text, HasSubstr("orvelbox clean ab")))));
}

Lines Findings(const CacheText& text) {
  return DescribeFindings(VerifyCache("TPA.txt", text, kPackages, [](const std::string&) { return false; }));
}

TEST(CacheVerify, findings_tell_the_way_out) {
  EXPECT_THAT(Findings(std::nullopt),
              ElementsAre("/opt/usr/home/owner/share/dotnet/TPA.txt is missing; write [START][END] into a file of that "
                          "name, then clean each CoBA package with: orvelbox clean PKG"));
  EXPECT_THAT(Findings("/apps/a/x:/apps/a/x:/z"),
              ElementsAre("/opt/usr/home/owner/share/dotnet/TPA.txt does not begin with [START] and end with [END]; "
                          "write [START][END] into it, then clean each CoBA package with: orvelbox clean PKG",
                          "TPA.txt: /apps/a/x is gone; bring the entries of the package up to date with: orvelbox "
                          "clean a",
                          "TPA.txt: /apps/a/x is there more than once; leave one of the entries",
                          "TPA.txt: /z belongs to no installed package; take the entry out of the file, or install "
                          "the package again"));
  EXPECT_THAT(
      DescribeFindings(FindPrefixHazards({PackageAt("a", "/apps/a"), PackageAt("ab", "/apps/ab")})),
      ElementsAre("/apps/a (a) begins /apps/ab (ab); what takes the entries of the first out takes those of the "
                  "second along, so after an uninstall of a, call: orvelbox clean ab"));
}

TEST(CacheVerify, json_says_whether_anything_was_found) {
  EXPECT_EQ(ToJson(std::vector<CacheFinding>{}), R"({"sound":true,"findings":[]})");
  const auto json = host::ParseJson(ToJson({{"TPA.txt", "gone", "/x", "text"}}));
  EXPECT_EQ(json["sound"], false);
  EXPECT_EQ(json["findings"][0]["kind"], "gone");
}

}  // namespace
}  // namespace orvelbox
