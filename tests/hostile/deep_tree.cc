// Creates and removes deep trees directory by directory.
#include "tests/hostile/deep_tree.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/unique_fd.h"
#include "tests/support/command.h"

namespace hostile {

void MakeDeepTree(const std::string& top, const std::string& name, int levels) {
  int directory = open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < levels; ++i) {
    const UniqueFd parent(directory);
    ASSERT_EQ(0, mkdirat(parent.get(), name.c_str(), 0755));
    directory = openat(parent.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_LE(0, directory);
    const UniqueFd dll(openat(directory, "A.dll", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ASSERT_LE(0, dll.get());
  }
  close(directory);
}

std::size_t CountBelow(const std::string& top, const std::string& name) {
  return std::stoul(support::OutputOf("find '" + top + "' -name '" + name + "' | wc -l"));
}

void RemoveDeepTree(const std::string& top) { EXPECT_EQ("", support::OutputOf("rm -rf '" + top + "'/*")); }

}  // namespace hostile
