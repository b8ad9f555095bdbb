// Where the output of ahead-of-time compilation goes inside a package.
#include "morvath/destination_paths.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>

namespace {

TEST(DestinationPaths, each_kind_of_content_has_its_directory) {
  EXPECT_EQ("/shared/lib", AppApiPath().GetDestinationPath());
  EXPECT_EQ("/shared/res", CoBAComponentPath().GetDestinationPath());
  EXPECT_EQ("/shared/res/d.pc", DpcPath().GetDestinationPath());
}

TEST(DestinationPaths, through_the_base_each_kind_answers_with_its_own_directory) {
  AppApiPath app_api;
  CoBAComponentPath coba;
  DpcPath dpc;
  const std::pair<AotPathManager*, const char*> rows[] = {
      {&app_api, "/shared/lib"}, {&coba, "/shared/res"}, {&dpc, "/shared/res/d.pc"}};
  for (const auto& [manager, directory] : rows) {
    EXPECT_EQ(directory, manager->GetDestinationPath());
    EXPECT_EQ(directory, AotDestinationPathGetter(manager));
  }
}

// A kind of content that counts its calls.
template <typename Base>
class Counting : public Base {
 public:
  explicit Counting(int& destroyed) : destroyed_(destroyed) {}
  ~Counting() override { ++destroyed_; }
  std::string GetDestinationPath() override { return "/asked/" + std::to_string(++asked_); }

 private:
  int& destroyed_;
  int asked_ = 0;
};

TEST(DestinationPaths, the_getter_answers_what_the_object_answers_and_asks_once) {
  int destroyed = 0;
  Counting<AotPathManager> manager(destroyed);
  EXPECT_EQ("/asked/1", AotDestinationPathGetter(&manager));
  EXPECT_EQ("/asked/2", AotDestinationPathGetter(&manager));
  EXPECT_EQ(0, destroyed);
}

template <typename Base>
int DestroyedThroughTheBase() {
  int destroyed = 0;
  { const std::unique_ptr<AotPathManager> manager = std::make_unique<Counting<Base>>(destroyed); }
  return destroyed;
}

TEST(DestinationPaths, deleting_through_the_base_runs_the_subclasss_destructor) {
  EXPECT_EQ(1, DestroyedThroughTheBase<AotPathManager>());
  EXPECT_EQ(1, DestroyedThroughTheBase<AppApiPath>());
  EXPECT_EQ(1, DestroyedThroughTheBase<CoBAComponentPath>());
  EXPECT_EQ(1, DestroyedThroughTheBase<DpcPath>());
}

TEST(DestinationPaths, the_base_alone_answers_nothing_and_cannot_be_made) {
  EXPECT_TRUE(std::is_abstract_v<AotPathManager>);
  EXPECT_FALSE(std::is_abstract_v<AppApiPath>);
  EXPECT_FALSE(std::is_abstract_v<CoBAComponentPath>);
  EXPECT_FALSE(std::is_abstract_v<DpcPath>);
}

}  // namespace
