// Sets the locale of a test program if CTest names one: the program that loads the plug-in may have set any. Compiled
// into the programs whose cases run a second time with that locale.
#include <gtest/gtest.h>
#include <strings.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale>

namespace {

// `TURKISH_LOCALE_PATH` is the locale's directory. In this locale "I" is not the capital of "i", and "," is the decimal
// point.
class ProcessLocale : public testing::Environment {
  void SetUp() override {
    const char* const path = std::getenv("TURKISH_LOCALE_PATH");
    if (path == nullptr) return;
    setenv("LOCPATH", path, 1);
    setenv("LC_ALL", "tr_TR.UTF-8", 1);
    const bool folds = std::setlocale(LC_ALL, "") != nullptr && strcasecmp("I", "i") != 0;
    if (!folds || std::strcmp(std::localeconv()->decimal_point, ",") != 0) {
      std::fprintf(stderr, "%s holds no Turkish locale\n", path);
      std::abort();  // cases that do not run because of a failure here would count as skipped
    }
    std::locale::global(std::locale(""));
  }
};

[[maybe_unused]] const testing::Environment* const kProcessLocale =
    testing::AddGlobalTestEnvironment(new ProcessLocale);  // NOLINT: GoogleTest owns it

}  // namespace
