// Cache files that hold anything but a cache text.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "plugin/hooks.h"
#include "tests/hostile/watched_device.h"
#include "tests/support/device_root.h"
#include "tests/support/files.h"

namespace hostile {
namespace {

using support::kCobaFile;
using support::kTpaFile;
using support::ReadFile;
using support::WriteFile;

// Bytes without order; no NUL among them, because a text ends there when it is written.
std::string Noise(std::size_t size, unsigned seed) {
  std::mt19937 engine(seed);
  std::string noise(size, '\0');
  for (char& byte : noise) byte = static_cast<char>(engine() % 255 + 1);
  return noise;
}

void WriteBoth(const std::string& text) {
  WriteFile(kTpaFile, text);
  WriteFile(kCobaFile, text);
}

HOSTILE_TEST(HostileCacheFiles, noise_without_an_entry_stays_as_it_is) {
  const std::string noise = Noise(1 << 20, 4) + std::string(1000, '\0') + Noise(1000, 5);
  WriteBoth(noise);
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL).result);
  EXPECT_EQ(noise, ReadFile(kTpaFile));
  EXPECT_EQ(noise, ReadFile(kCobaFile));
  EXPECT_EQ(0u, device.platform().Calls("rename").size());
}

HOSTILE_TEST(HostileCacheFiles, an_entry_is_taken_out_of_noise_and_the_rest_stays) {
  const std::string front = Noise(4096, 6);
  const std::string back = Noise(4096, 7);
  WriteBoth(front + ":" + kRoot + "\n\x01%n:" + back);
  EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_UNINSTALL).result);
  EXPECT_EQ(front + ":" + back, ReadFile(kTpaFile));
  EXPECT_EQ(front + ":" + back, ReadFile(kCobaFile));
}

HOSTILE_TEST(HostileCacheFiles, a_package_is_added_to_noise_as_to_any_text) {
  const std::string noise = Noise(4096, 8);
  WriteBoth(noise);
  WriteFile(InPackage("shared/res/X.dll"));
  device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
  const std::string kept = noise.substr(0, noise.size() - 5);
  EXPECT_EQ(kept + ":" + InPackage("shared/res/X.dll") + "[END]", ReadFile(kTpaFile));
  EXPECT_EQ(kept + ":" + InPackage("shared/res/") + "[END]", ReadFile(kCobaFile));
}

TEST(HostileCacheFiles, texts_that_are_nothing_but_structure_come_to_an_end) {
  for (const char* text : {":", "]", "[", "::::", "]]]]", "[[[[", "]:[", "][", ":[", "[END]", "[START]", "[END][START]",
                           "[START]:::[END]", "\n", "[START]\n[END]\n"}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      WriteBoth(text);
      EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL).result) << text;
      EXPECT_EQ(text, ReadFile(kTpaFile));
      device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN);
      EXPECT_NE(std::string::npos, ReadFile(kCobaFile).find(InPackage("shared/res/[END]"))) << text;
    });
  }
}

TEST(HostileCacheFiles, roots_that_are_structure_come_to_an_end) {
  for (const char* root : {":", "[", "]", "[END]", "[START]", "a:", ":a", "]/", "[START]/a:[END]"}) {
    OnWatchedDevice([&](const WatchedDevice& device) {
      device.platform().packages[0].applications[0].root = root;
      WriteBoth("[START]/a:/b:[x]:]/:::[END]");
      EXPECT_EQ(0, device.Send(PKGMGR_PARSER_PLUGIN_RECOVERUNINSTALL).result) << root;
      EXPECT_EQ(0, device.SendCoba(PKGMGR_PARSER_PLUGIN_CLEAN).result) << root;
    });
  }
}

}  // namespace
}  // namespace hostile
