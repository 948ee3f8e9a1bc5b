#include "platform/uikit/NSAttributedString.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    struct Case {
        const char* pattern;
        std::vector<const char*> arguments;
        const char* filled;
    };
    const Case cases[] = {
        {"nothing", {"ignored"}, "nothing"},
        {"%@", {""}, ""},
        {"Add %@ files to %@", {"3", "Holidays", "ignored"}, "Add 3 files to Holidays"},
        // A placeholder that an argument brings along is filled before those behind it.
        {"%@ and %@", {"a %@", "b", "c"}, "a b and c"},
        {"to %@", {"%@", "x"}, "to x"},
        // One that forms where an argument ends counts as well.
        {"%@@ and more", {"100%", "!"}, "100! and more"},
        {"%@%@", {"%", "a", "b"}, "%a"},
    };
    for (const Case& each : cases) {
        std::vector<NSAttributedString> arguments;
        for (const char* const argument : each.arguments)
            arguments.push_back(highlighted(argument));
        EXPECT_EQ(NSAttributedString(each.pattern, plain).format(arguments).string(), each.filled)
            << each.pattern;
    }
}

TEST(NSAttributedString, FormatKeepsTheLooksOfTemplateAndArguments) {
    const NSAttributedString filled =
        NSAttributedString("Add %@ files to %@", plain).format({highlighted("3"), highlighted("Ärger")});
    const std::vector<NSAttributedString::Run> expected{
        {"Add ", plain}, {"3", tinted}, {" files to ", plain}, {"Ärger", tinted}};
    EXPECT_EQ(filled.runs(), expected);
}

TEST(NSAttributedStringDeathTest, FormatWithTooFewArgumentsStops) {
    const NSAttributedString pattern("Add %@ files to %@", plain);
    EXPECT_DEATH(pattern.format({highlighted("3")}), "Not enough arguments provided for Add %@ files to %@");
    // The argument's own placeholder uses up the argument meant for the next one.
    EXPECT_DEATH(pattern.format({highlighted("%@"), highlighted("a")}), "Not enough arguments");
}

TEST(NSAttributedString, ReplaceCutsRunsAtAnyPlace) {
    NSAttributedString abcdef("abc", plain);
    abcdef.append(highlighted("def"));
    for (std::size_t location = 0; location <= 6; ++location)
        for (std::size_t length = 0; location + length <= 6; ++length) {
            NSAttributedString text = abcdef;
            text.replace(location, length, NSAttributedString("-"));
            EXPECT_EQ(text.string(), std::string("abcdef").replace(location, length, "-"));
            for (const NSAttributedString::Run& run : text.runs())
                EXPECT_TRUE(run.text.find_first_of("abc") == std::string::npos || run.attributes == plain);
        }
}

TEST(NSAttributedString, NeighboursOfOneLookAreOneRun) {
    NSAttributedString text("a", plain);
    text.append({"b", plain});
    text.append(text);
    EXPECT_THAT(text.runs(), testing::ElementsAre(NSAttributedString::Run{"abab", plain}));
}

} // namespace
} // namespace sela
