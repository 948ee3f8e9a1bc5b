#include "platform/foundation/Bundle.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace sela {
namespace {

/// What a fresh process says under one environment; the bundle settles its languages once.
void expectText(const char* variable, const char* value, const char* key, const char* text) {
    EXPECT_EXIT(
        {
            for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
                ::unsetenv(name);
            ::setenv(variable, value, 1);
            std::fputs(Bundle::main().localizedString(key).c_str(), stderr);
            std::exit(0);
        },
        testing::ExitedWithCode(0), text)
        << variable << "=" << value;
}

TEST(BundleDeathTest, TextsFallBackToEnglishAndThenToTheKey) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    expectText("LANG", "C", "Add xxx files to xxx", "^Add %@ files to %@$");
    expectText("LANG", "C.UTF-8", "Add 1 file to xxx", "^Add 1 file to %@$");
    expectText("LC_ALL", "POSIX", "Add 1 file to xxx", "^Add 1 file to %@$");
    expectText("LANG", "tlh_KL.UTF-8", "Add 1 file to xxx", "^Add 1 file to %@$");
    expectText("LANGUAGE", "tlh:xx", "Add 1 file to xxx", "^Add 1 file to %@$");
    expectText("LANG", "C", "no such key", "^no such key$");
}

} // namespace
} // namespace sela
