#include "vault/PublicationRules.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace sela {
namespace {

using Code = std::optional<std::string>;

TEST(PublicationRules, PasscodesThatGiveTheVaultAwayAreRefused) {
    struct Case {
        Code vault, decoy;
        std::string problem; ///< a part of it; empty: none
        std::size_t warnings = 0;
    };
    const Case cases[] = {
        {"123456", "654321", ""},
        {"1234", "4321", ""},
        {"1234", {}, ""},
        {{}, "4321", ""},
        {"12345", {}, "", 1},
        {"123456", "4321", "", 1},
        {"", {}, "vault passcode is empty"},
        {"1234", "", "decoy passcode is empty"},
        {"12a4", {}, "vault passcode cannot be typed"},
        {"1234 ", {}, "vault passcode cannot be typed"},
        {"1234", "١234", "decoy passcode cannot be typed"},
        {"1234", "1234", "the same"},
        {"1234", "123456", "decoy passcode begins with"},
        {"123456", "1234", "vault passcode begins with"},
        {"1234", "432100", "longer"},
        {"12345", "54321", "4 or 6 digits"},
        {"1234567", "7654321", "4 or 6 digits"},
    };
    for (const auto& [vault, decoy, problem, warnings] : cases) {
        const ErrorRef found = problemWithPasscodes(vault, decoy);
        const std::string text = found ? found->localizedDescription() : "";
        const std::string place = vault.value_or("none") + " beside " + decoy.value_or("none") + ": " + text;
        EXPECT_EQ(text.empty(), problem.empty()) << place;
        EXPECT_NE(text.find(problem), std::string::npos) << place;
        if (problem.empty() && vault) {
            EXPECT_EQ(warningsOfPasscodes(*vault, decoy).size(), warnings) << place;
        }
    }
}

TEST(PublicationRules, PasswordsThatTheKeypadCannotTypeAreRefused) {
    EXPECT_FALSE(problemWithPasswords({{{"A"}, false, {}, {}}, {{"A", "B"}, true, "0123456789", {}}}));
    for (const char* password : {"", "letters", "12 34"}) {
        const ErrorRef problem =
            problemWithPasswords({{{"A"}, false, "1", {}}, {{"A", "B"}, false, password, {}}});
        ASSERT_TRUE(problem) << password;
        EXPECT_NE(problem->localizedDescription().find("A/B"), std::string::npos);
    }
}

TEST(PublicationRules, WarnsOfAlbumsThatThePickerDoesNotShowAsTheyAreMeant) {
    const auto albums = [](std::vector<std::vector<std::string>> vault,
                           std::vector<std::vector<std::string>> decoy) {
        std::vector<SharedAlbum> all;
        for (auto& path : vault)
            all.push_back({path, false, {}, {}});
        for (auto& path : decoy)
            all.push_back({path, true, {}, {}});
        return all;
    };
    EXPECT_EQ(warningsOfAlbums(albums({{"A", "x"}, {"A"}}, {{"A"}, {"A", "x"}})), std::vector<std::string>());
    EXPECT_EQ(warningsOfAlbums(albums({{"A"}, {}, {"A", "x", "y"}, {"B", "x"}, {"A"}}, {{"A", "x"}})).size(),
              5U);
    const std::vector<std::string> many = warningsOfAlbums(albums({50, {"A", "x"}}, {}));
    ASSERT_EQ(many.size(), 21U);
    EXPECT_EQ(many.back(), "and 30 more albums like these");
}

} // namespace
} // namespace sela
