#include "platform/uikit/NSAttributedString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace sela {
namespace {

const NSAttributedString::Attributes plain{.foregroundColor = UIColor::black(),
                                           .font = UIFont::systemFont(14)};
const NSAttributedString::Attributes tinted{.foregroundColor = UIColor::named("AppTint"),
                                            .font = UIFont::systemFont(14)};

NSAttributedString highlighted(const char* text) {
    return {text, tinted};
}

TEST(NSAttributedString, FormatFillsTheFirstPlaceholderEachTime) {
    const std::tuple<const char*, std::vector<const char*>, const char*> cases[] = {
        {"nothing", {"ignored"}, "nothing"},
        {"%@", {""}, ""},
        {"Add %@ files to %@", {"3", "Holidays", "ignored"}, "Add 3 files to Holidays"},
        // A placeholder inside an argument is filled before those after it.
        {"%@ and %@", {"a %@", "b", "c"}, "a b and c"},
        {"to %@", {"%@", "x"}, "to x"},
        // One that forms where an argument ends counts as well.
        {"%@@ and more", {"100%", "!"}, "100! and more"},
        {"%@%@", {"%", "a", "b"}, "%a"},
    };
    for (const auto& [pattern, texts, filled] : cases) {
        std::vector<NSAttributedString> arguments;
        for (const char* const text : texts)
            arguments.push_back(highlighted(text));
        EXPECT_EQ(NSAttributedString(pattern, plain).format(arguments).string(), filled) << pattern;
    }
}

TEST(NSAttributedStringDeathTest, FormatWithTooFewArgumentsStops) {
    const NSAttributedString pattern("Add %@ files to %@", plain);
    EXPECT_DEATH(pattern.format({highlighted("3")}), "Not enough arguments provided for Add %@ files to %@");
    // The argument's own placeholder uses up the argument meant for the next one.
    EXPECT_DEATH(pattern.format({highlighted("%@"), highlighted("a")}), "Not enough arguments");
}

TEST(NSAttributedString, NeighboursOfOneLookAreOneRun) {
    NSAttributedString text("a", plain);
    text.append({"b", plain});
    text.append(text);
    EXPECT_THAT(text.runs(), testing::ElementsAre(NSAttributedString::Run{"abab", plain}));
}

} // namespace
} // namespace sela
