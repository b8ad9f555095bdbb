// The filter of catalogued names.
#include "plugin/name_filter.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int kAdded = 2000;

// Names that differ in their middle, before the end or at the end, and are short or long.
std::string Name(int number) {
  const std::string digits = std::to_string(number);
  const std::string shapes[] = {digits + ".dll", "Orvel.Platform." + digits + ".resources.dll",
                                "Orvel.Platform.Assembly" + digits + ".dll", "Orvel.Platform.Assembly.dll" + digits};
  return shapes[number % 4];
}

NameFilter Filled() {
  NameFilter filter;
  for (int number = 0; number < kAdded; ++number) filter.Add(Name(number));
  return filter;
}

TEST(NameFilter, holds_whatever_was_added) {
  const NameFilter filter = Filled();
  for (int number = 0; number < kAdded; ++number) EXPECT_TRUE(filter.MayHold(Name(number))) << Name(number);
}

TEST(NameFilter, is_wrong_about_few_others) {
  const NameFilter filter = Filled();
  constexpr int kOthers = 40000;
  int wrong = 0;
  for (int number = kAdded; number < kAdded + kOthers; ++number) wrong += filter.MayHold(Name(number)) ? 1 : 0;
  EXPECT_LT(0, wrong) << "or the figure below has no meaning";
  EXPECT_GT(kOthers / 100, wrong);
}

TEST(NameFilter, without_names_holds_none) {
  const NameFilter empty;
  for (const char* name : {"", "A.dll", "Orvel.Platform.Assembly.dll"}) EXPECT_FALSE(empty.MayHold(name));
}

}  // namespace
