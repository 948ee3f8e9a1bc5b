#include "platform/foundation/Bundle.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>

namespace sela {
namespace {

using Environment = std::map<const char*, const char*>;

/// What a fresh process says under one environment, behind the language; the bundle settles its languages
/// once.
void expectText(const Environment& environment, const char* key, const char* text) {
    EXPECT_EXIT(
        {
            for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
                ::unsetenv(name);
            for (const auto& [variable, value] : environment)
                ::setenv(variable, value, 1);
            const Bundle& bundle = Bundle::main();
            std::fputs((bundle.preferredLocalization() + ": " + bundle.localizedString(key)).c_str(), stderr);
            std::exit(0);
        },
        testing::ExitedWithCode(0), text)
        << testing::PrintToString(environment);
}

TEST(BundleDeathTest, TextsFallBackToEnglishAndThenToTheKey) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    expectText({{"LANG", "C.UTF-8"}}, "Add xxx files to xxx", "^en: Add %@ files to %@$");
    expectText({{"LANG", "tlh_KL.UTF-8"}}, "Add 1 file to xxx", "^en: Add 1 file to %@$");
    expectText({{"LANG", "C.UTF-8"}, {"LANGUAGE", "tlh:xx"}}, "Add 1 file to xxx", "^en: Add 1 file to %@$");
    expectText({{"LANG", "C"}}, "no such key", "^en: no such key$");
    expectText({{"LANG", "de_DE"}}, "no such key", "^de: no such key$");
}

TEST(BundleDeathTest, TheEnvironmentChoosesTheLanguageAsForOtherPrograms) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const char* const german = "^de: Abbrechen$";
    const char* const french = "^fr: Annuler$";
    const char* const english = "^en: Cancel$";
    expectText({}, "Cancel", english);
    expectText({{"LANG", "de_DE.UTF-8"}}, "Cancel", german);
    expectText({{"LANG", "zh_CN.UTF-8"}}, "Cancel", "^zh_CN: ");
    expectText({{"LANG", "fr_FR"}, {"LC_MESSAGES", "de_AT.UTF-8"}}, "Cancel", german);
    expectText({{"LANG", "de_DE"}, {"LC_MESSAGES", "de"}, {"LC_ALL", "fr_CA.UTF-8"}}, "Cancel", french);
    expectText({{"LANG", "de_DE"}, {"LANGUAGE", "tlh:fr:de"}}, "Cancel", french);
    expectText({{"LANG", "de_DE"}, {"LANGUAGE", ""}}, "Cancel", german);
    expectText({{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, "Cancel", german);
    expectText({{"LANG", "de_DE"}, {"LC_ALL", "C"}, {"LANGUAGE", "de"}}, "Cancel", english);
    expectText({{"LANGUAGE", "de"}}, "Cancel", english);
}

} // namespace
} // namespace sela
