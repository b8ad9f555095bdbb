// Tests whose bodies run within a frame: in a process of their own, over fresh doubles, on a device.
#ifndef TESTS_SUPPORT_FRAMED_TEST_H_
#define TESTS_SUPPORT_FRAMED_TEST_H_

#include <gtest/gtest.h>

// A test whose body is the body of a function that `frame` calls. `parameter` declares what the frame hands it.
#define FRAMED_TEST(frame, parameter, suite, name)        \
  static void suite##_##name([[maybe_unused]] parameter); \
  TEST(suite, name) { frame(suite##_##name); }            \
  static void suite##_##name([[maybe_unused]] parameter)

#endif
