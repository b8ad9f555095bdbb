// Checks run by GNU parallel as in docs/orvelbox.md: two workers, every package once, one line each.
#include <nlohmann/json.hpp>
#include <set>

#include "platform/host/json.h"
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

using support::Quoted;

class ParallelE2e : public Desk {};

TEST_F(ParallelE2e, two_workers_check_every_package_once) {
  AddPlatformFile("framework/Json.dll");
  std::set<std::string> expected;
  for (int i = 0; i < 10; ++i) {
    const std::string name = "p" + std::to_string(i);
    MakePackage(name, ManifestText(name, "1"), {{i % 2 == 0 ? "Json.dll" : "Own.dll", ""}});
    expected.insert(name + (i % 2 == 0 ? " 1" : " 0"));
  }
  // The exit status is the number of jobs that found something: here all five, of two packages each.
  const std::string output =
      support::OutputOf("ls -d " + Quoted(dir_ / "packages") + "/* | PARALLEL_HOME=" + Quoted(dir_ / "home") +
                        " parallel --quote --will-cite -j 2 -N 2 " + Quoted(ORVELBOX_PROGRAM) + " --device " +
                        Quoted(device_.directory) + " check --format json --jobs 1; [ $? = 5 ]");
  std::multiset<std::string> told;
  for (const std::string& line : support::Lines(output)) {
    const auto json = host::ParseJson(line);
    told.insert(json["id"].get<std::string>() + " " + std::to_string(json["duplicates"].get<int>()));
  }
  EXPECT_EQ(told, std::multiset<std::string>(expected.begin(), expected.end())) << output;
}

}  // namespace
}  // namespace e2e
