// A store checked over several machines as in docs/orvelbox.md; one of them fails during the run.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "platform/host/json.h"
#include "tests/support/command.h"
#include "tests/support/orvelbox_desk.h"

namespace e2e {
namespace {

class MachinesE2e : public Desk {};

// The machine that fails never finishes its job.
constexpr const char* kCheck = R"('[ "$MACHINE" = one ] || { touch begun; sleep 60; exit 9; }; )" ORVELBOX_PROGRAM
                               R"( check --platform tv.txt --format json --jobs 1 {} || [ $? = 1 ]')";

TEST_F(MachinesE2e, a_machine_that_dies_loses_no_package_and_tells_none_twice) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can start ssh servers here";
  support::WriteFile(dir_ / "tv.txt", "/usr/share/dotnet.orvel/framework/Json.dll\n");
  std::multiset<std::string> expected;
  for (int i = 0; i < 20; ++i) {
    const std::string name = "p" + std::to_string(i);
    MakePackage(name, ManifestText(name, "1"), {{i % 2 == 0 ? "Json.dll" : "Own.dll", ""}});
    expected.insert(name + (i % 2 == 0 ? " 1" : " 0"));
  }
  support::WriteFile(dir_ / "spread",
                     std::string("cd ") + dir_.path().string() +
                         " && ls -d packages/* | PARALLEL_HOME=$PWD/home parallel --will-cite --ssh \"ssh "
                         "-F $SSH_CONFIG\" -S 1/one,1/two --workdir $PWD --filter-hosts --retries 3 "
                         "--joblog jobs.tsv -N 2 " +
                         kCheck + " 2>complaints");
  const std::string output = support::OutputOf(TWO_MACHINES " " + dir_.path().string() + " sh " + (dir_ / "spread"));
  std::multiset<std::string> told;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    const auto json = host::ParseJson(line);
    told.insert(json["id"].get<std::string>() + " " + std::to_string(json["duplicates"].get<int>()));
  }
  EXPECT_EQ(told, expected) << output << support::ReadFile(dir_ / "complaints");
  EXPECT_TRUE(support::IsThere(dir_ / "begun"));
  EXPECT_THAT(support::ReadFile(dir_ / "jobs.tsv"), testing::HasSubstr("\tone\t"));
}

}  // namespace
}  // namespace e2e
