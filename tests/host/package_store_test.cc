// The package database.
#include "platform/host/package_store.h"

#include "tests/host/frame.h"
#include "tests/host/store_case.h"

namespace host_tests {
namespace {

using testing::Pair;

void ExpectSame(const host::Package& expected, const host::Package& actual) {
  EXPECT_EQ(expected.id, actual.id);
  EXPECT_EQ(expected.version, actual.version);
  EXPECT_EQ(expected.type, actual.type);
  EXPECT_EQ(expected.root, actual.root);
  EXPECT_EQ(expected.main_app_id, actual.main_app_id);
  EXPECT_EQ(expected.privileges, actual.privileges);
  ASSERT_EQ(expected.applications.size(), actual.applications.size());
  for (size_t i = 0; i < expected.applications.size(); ++i) {
    const auto& left = expected.applications[i];
    const auto& right = actual.applications[i];
    EXPECT_EQ(std::tie(left.id, left.kind, left.type, left.exec),
              std::tie(right.id, right.kind, right.type, right.exec));
    ASSERT_EQ(left.metadata.size(), right.metadata.size());
    for (size_t j = 0; j < left.metadata.size(); ++j) {
      EXPECT_EQ(left.metadata[j].key, right.metadata[j].key);
      EXPECT_EQ(left.metadata[j].value, right.metadata[j].value);
    }
  }
}

TEST_F(Store, a_package_comes_back_with_every_order_and_repeat) {
  Open().Put(SamplePackage("p"));
  const auto found = Open(PackageStore::Mode::kReadOnly).Find("p");
  ASSERT_TRUE(found);
  ExpectSame(SamplePackage("p"), *found);
}

TEST_F(Store, odd_texts_come_back) {
  host::Package package = SamplePackage("it's \"p\"; DROP TABLE packages;--");
  package.version = "";
  package.privileges = {"", "\xff", std::string("nul\0inside", 10), "日本"};
  Open().Put(package);
  ExpectSame(package, Open().Find(package.id).value());
}

TEST_F(Store, an_unknown_package_is_not_found) {
  EXPECT_FALSE(Open().Find("p"));
  EXPECT_FALSE(Open().FindByApplication("p.main"));
  EXPECT_FALSE(Open().Remove("p"));
}

TEST_F(Store, a_package_is_found_by_each_application) {
  Open().Put(SamplePackage("p"));
  Open().Put(SamplePackage("q"));
  EXPECT_EQ("q", Open().FindByApplication("q.main").value().id);
  EXPECT_EQ("q", Open().FindByApplication("q.service").value().id);
}

TEST_F(Store, putting_again_replaces_the_package_whole) {
  Open().Put(SamplePackage("p"));
  const host::Package bare{"p", "2", "rpk", "/opt/usr/globalapps/p", "", {}, {}};
  Open().Put(bare);
  ExpectSame(bare, Open().Find("p").value());
  EXPECT_EQ(0, Rows("applications") + Rows("metadata") + Rows("privileges"));
}

TEST_F(Store, removing_takes_all_that_belongs_to_the_package_and_nothing_else) {
  Open().Put(SamplePackage("p"));
  Open().Put(SamplePackage("q"));
  EXPECT_TRUE(Open().Remove("p"));
  ExpectSame(SamplePackage("q"), Open().Find("q").value());
  EXPECT_EQ(2, Rows("applications"));
  EXPECT_EQ(5, Rows("metadata"));
  EXPECT_EQ(3, Rows("privileges"));
}

TEST_F(Store, packages_are_listed_by_byte) {
  for (const char* id : {"b", "B", "a.c", "a", "\xC3\xA4"}) Open().Put(SamplePackage(id));
  EXPECT_THAT(Ids(), ElementsAre("B", "a", "a.c", "b", "\xC3\xA4"));
}

TEST_F(Store, applications_are_filtered_by_all_entries) {
  for (const char* id : {"q", "p"}) Open().Put(SamplePackage(id));
  const auto store = Open(PackageStore::Mode::kReadOnly);
  EXPECT_THAT(store.ApplicationsWithMetadata({}),
              ElementsAre(Pair("p", "p.main"), Pair("p", "p.service"), Pair("q", "q.main"), Pair("q", "q.service")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"coba", "true"}}),
              ElementsAre(Pair("p", "p.main"), Pair("q", "q.main")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"mark", "second"}, {"only", "q"}}), ElementsAre(Pair("q", "q.main")));
  EXPECT_THAT(store.ApplicationsWithMetadata({{"coba", "true"}, {"coba", "false"}}), IsEmpty());
}

TEST_F(Store, applications_keep_the_order_of_the_manifest) {
  auto package = SamplePackage("p");
  std::swap(package.applications[0], package.applications[1]);
  Open().Put(package);
  EXPECT_THAT(Open().ApplicationsWithMetadata({}), ElementsAre(Pair("p", "p.service"), Pair("p", "p.main")));
}

TEST_F(Store, an_application_of_another_package_is_refused_and_nothing_changes) {
  Open().Put(SamplePackage("p"));
  auto thief = SamplePackage("q");
  thief.applications[1].id = "p.main";
  EXPECT_EQ(file().string() +
                ": application p.main belongs to package p already; uninstall that one, or give the application "
                "another id",
            ErrorOf([&] { Open().Put(thief); }));
  EXPECT_THAT(Ids(), ElementsAre("p"));
}

TEST_F(Store, a_failed_replacement_leaves_the_old_package) {
  Open().Put(SamplePackage("p"));
  auto twice = SamplePackage("p");
  twice.version = "2";
  twice.applications[1].id = twice.applications[0].id;
  EXPECT_THAT(ErrorOf([&] { Open().Put(twice); }), HasSubstr(file().string() + ": "));
  ExpectSame(SamplePackage("p"), Open().Find("p").value());
}

TEST_F(Store, creating_again_keeps_what_is_there) {
  Open().Put(SamplePackage("p"));
  Open(PackageStore::Mode::kCreate);
  EXPECT_THAT(Ids(), ElementsAre("p"));
}

}  // namespace
}  // namespace host_tests
