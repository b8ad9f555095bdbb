// The locale of a test program, where CTest names one: whoever loads the plug-in may have set any. Compiled into the
// programs whose cases run a second time so.
#include <gtest/gtest.h>
#include <strings.h>

#include <clocale>
#include <cstdlib>
#include <locale>

namespace {

// `TURKISH_LOCALE_PATH` is the directory of the locale: in it "I" is no capital "i", and "," begins the decimals.
class ProcessLocale : public testing::Environment {
  void SetUp() override {
    const char* const path = std::getenv("TURKISH_LOCALE_PATH");
    if (path == nullptr) return;
    setenv("LOCPATH", path, 1);
    setenv("LC_ALL", "tr_TR.UTF-8", 1);
    ASSERT_STREQ("tr_TR.UTF-8", std::setlocale(LC_ALL, "")) << path << " holds no such locale";
    std::locale::global(std::locale(""));
    ASSERT_NE(0, strcasecmp("I", "i"));
    ASSERT_STREQ(",", std::localeconv()->decimal_point);
  }
};

[[maybe_unused]] const testing::Environment* const kProcessLocale =
    testing::AddGlobalTestEnvironment(new ProcessLocale);  // NOLINT: GoogleTest owns it

}  // namespace
