// Tests whose bodies run inside a function: in a new process, with fresh doubles, on a device.
#ifndef TESTS_SUPPORT_FRAMED_TEST_H_
#define TESTS_SUPPORT_FRAMED_TEST_H_

#include <gtest/gtest.h>

// A test that passes its body to `frame` as a function with the parameter `parameter`.
#define FRAMED_TEST(frame, parameter, suite, name)        \
  static void suite##_##name([[maybe_unused]] parameter); \
  TEST(suite, name) { frame(suite##_##name); }            \
  static void suite##_##name([[maybe_unused]] parameter)

#endif
