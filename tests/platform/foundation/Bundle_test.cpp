#include "platform/foundation/Bundle.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>

namespace sela {
namespace {

using Environment = std::map<const char*, const char*>;

TEST(BundleDeathTest, TheEnvironmentChoosesTheLanguageAndTextsFallBackToEnglishAndTheKey) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const char* const german = "^de: Abbrechen$";
    const char* const french = "^fr: Annuler$";
    const char* const english = "^en: Cancel$";
    const struct {
        Environment environment;
        const char* key;
        const char* text; ///< behind the language
    } cases[] = {
        {{}, "Cancel", english},
        {{{"LANG", "de_DE.UTF-8"}}, "Cancel", german},
        {{{"LANG", "zh_CN.UTF-8"}}, "Cancel", "^zh_CN: "},
        {{{"LANG", "de_AT@euro"}}, "Cancel", german},
        {{{"LANG", "fr_FR"}, {"LC_MESSAGES", "de_AT.UTF-8"}}, "Cancel", german},
        {{{"LANG", "de_DE"}, {"LC_MESSAGES", "de"}, {"LC_ALL", "fr_CA.UTF-8"}}, "Cancel", french},
        {{{"LANG", "de_DE"}, {"LANGUAGE", "tlh:fr:de"}}, "Cancel", french},
        {{{"LANG", "de_DE"}, {"LANGUAGE", ""}}, "Cancel", german},
        {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, "Cancel", german},
        {{{"LANG", "de_DE"}, {"LC_ALL", "C"}, {"LANGUAGE", "de"}}, "Cancel", english},
        {{{"LANGUAGE", "de"}}, "Cancel", english},
        {{{"LANG", "tlh_KL.UTF-8"}}, "Add 1 file to xxx", "^en: Add 1 file to %@$"},
        {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "tlh:xx"}}, "Add 1 file to xxx", "^en: Add 1 file to %@$"},
        {{{"LANG", "de_DE"}}, "no such key", "^de: no such key$"},
    };
    for (const auto& [environment, key, text] : cases)
        // In a fresh process, since the bundle settles its languages once.
        EXPECT_EXIT(
            {
                for (const char* const name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"})
                    ::unsetenv(name);
                for (const auto& [variable, value] : environment)
                    ::setenv(variable, value, 1);
                const Bundle& bundle = Bundle::main();
                std::fputs((bundle.preferredLocalization() + ": " + bundle.localizedString(key)).c_str(),
                           stderr);
                std::exit(0);
            },
            testing::ExitedWithCode(0), text)
            << testing::PrintToString(environment);
}

} // namespace
} // namespace sela
