// A failed check ends the process, so that the input is kept.
#include "fuzz/input.h"

#include <cstdio>
#include <cstdlib>

namespace fuzz {

namespace {

void Show(const char* what, const std::string& text) {
  std::fprintf(stderr, "%s \"", what);
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if (value < 0x20 || value > 0x7e) {
      std::fprintf(stderr, "\\x%02x", value);
    } else {
      std::fputc(byte, stderr);
    }
  }
  std::fputs("\"\n", stderr);
}

}  // namespace

void Require(bool holds, const char* promise) {
  if (holds) return;
  std::fprintf(stderr, "promise broken: %s\n", promise);
  std::abort();
}

void RequireEqual(const std::string& expected, const std::string& actual, const char* promise) {
  if (expected == actual) return;
  Show("expected", expected);
  Show("actual  ", actual);
  Require(false, promise);
}

}  // namespace fuzz
