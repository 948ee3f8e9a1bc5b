#include "unlock/SelaSharedAlbumPassCheck.h"
#include "unlock/UnlockTest.h"

#include <gmock/gmock.h>

namespace sela {
namespace {

/// The lengths of both screens on one size of screen, worked out by hand from the design at 375 points.
struct Lengths {
    CGSize screen;
    CGSize card;
    double titleHeight;
    double dot, gapOfSix, gapOfFour;
    double pickerDots, pickerKeys;   ///< offsets below what is above
    double subTitle, subTitleHeight; ///< offset and height
    double checkDots, checkKeys;     ///< offsets
    CGSize keypad, key;
    double rowGap;
    double messageWidth;
    double titleFont, subTitleFont, digitFont, messageFont;
};

const Lengths allLengths[] = {
    {{320, 568}, {274, 333}, 40,         13,       15, 20,  24, 29, 320 / 75.0, 26,
     20,         25,         {205, 195}, {51, 38}, 14, 188, 18, 16, 24,         15},
    {{375, 667}, {320, 390}, 46,         15,       18, 24,  28, 34, 5,  30,
     23,         29,         {240, 228}, {60, 44}, 17, 220, 20, 18, 28, 18},
    {{414, 896}, {354, 431}, 51,         17,       20, 26,  31, 38, 5.52, 34,
     25,         32,         {265, 252}, {66, 49}, 19, 243, 23, 20, 31,   20},
    {{450, 800}, {384, 468}, 56,         18,       22, 29,  34, 41, 6,  36,
     28,         35,         {288, 274}, {72, 53}, 21, 264, 24, 22, 34, 22},
    {{765, 1100}, {653, 796}, 94,         31,        37, 49,  57, 69, 10.2, 62,
     47,          59,         {490, 465}, {122, 90}, 35, 449, 41, 37, 57,   37},
};

class UnlockLayoutTest : public UnlockTest, public testing::WithParamInterface<Lengths> {
protected:
    UnlockLayoutTest() : UnlockTest(GetParam().screen) { publishAlbums({}); }

    void expectFrame(const std::string& name, const CGRect& expected) {
        const CGRect frame = view(name).frame();
        EXPECT_NEAR(frame.minX(), expected.minX(), 1e-6) << name;
        EXPECT_NEAR(frame.minY(), expected.minY(), 1e-6) << name;
        EXPECT_NEAR(frame.size.width, expected.size.width, 1e-6) << name;
        EXPECT_NEAR(frame.size.height, expected.size.height, 1e-6) << name;
    }

    void expectCard(double backButtonWidth) {
        expectFrame("backButton", {0, 0, backButtonWidth, lengths_.titleHeight});
        expectFrame("containerView", {(lengths_.screen.width - lengths_.card.width) / 2,
                                      (lengths_.screen.height - lengths_.card.height) / 2,
                                      lengths_.card.width, lengths_.card.height});
        expectFrame("titleLabel", {0, 0, lengths_.card.width, lengths_.titleHeight});
        EXPECT_EQ(label("titleLabel").font(), UIFont::boldSystemFont(lengths_.titleFont));
    }

    /// A row for `count` digits at `top`, of which `dots` are there, and the keys `offset` below it.
    void expectDotsAndKeys(int count, int dots, double top, double offset) {
        const double gap = count == 6 ? lengths_.gapOfSix : lengths_.gapOfFour;
        const double width = lengths_.dot * count + gap * (count - 1);
        expectFrame("indicatorContainer", {(lengths_.card.width - width) / 2, top, width, lengths_.dot});
        ASSERT_EQ(view("indicatorContainer").subviews().size(), static_cast<std::size_t>(dots));
        for (int i = 0; i < dots; ++i) {
            const std::string name = "indicator" + std::to_string(i + 1);
            expectFrame(name, {i * (lengths_.dot + gap), 0, lengths_.dot, lengths_.dot});
        }

        const auto [keypadWidth, keypadHeight] = lengths_.keypad;
        expectFrame("keypadView", {(lengths_.card.width - keypadWidth) / 2, top + lengths_.dot + offset,
                                   keypadWidth, keypadHeight});
        const auto [keyWidth, keyHeight] = lengths_.key;
        const double columns[] = {0, (keypadWidth - keyWidth) / 2, keypadWidth - keyWidth};
        for (int digit = 0; digit < 10; ++digit) {
            const std::string name = "button" + std::to_string(digit);
            const int row = digit == 0 ? 3 : (digit - 1) / 3;
            const int column = digit == 0 ? 1 : (digit - 1) % 3;
            expectFrame(name, {columns[column], row * (keyHeight + lengths_.rowGap), keyWidth, keyHeight});
            EXPECT_EQ(button(name).titleLabel().font(), UIFont::named("Roboto-Light", lengths_.digitFont));
            EXPECT_EQ(button(name).title(), std::to_string(digit));
        }
    }

    const Lengths& lengths_ = GetParam();
};

TEST_P(UnlockLayoutTest, BothScreensWithARowAsWideAsThePasscodeIsLongButOfFourDotsOrSix) {
    const struct {
        Passcode passcode;
        int count;
        int dots;
    } rows[] = {{"123456", 6, 6},     {"1234", 4, 4},
                {std::nullopt, 0, 4}, {"", 0, 4},
                {"1", 1, 4},          {"12345", 5, 4},
                {"1234567", 7, 4},    {"\u0661\u0662\u0663\u0664\u0665\u0666", 6, 6}};
    const auto [width, height] = lengths_.card;
    const double top = lengths_.titleHeight;
    for (const auto& [passcode, count, dots] : rows) {
        SCOPED_TRACE(passcode.value_or("none"));
        publishPasscode(passcode);
        openPicker();
        expectCard(top);
        expectDotsAndKeys(count, dots, top + lengths_.pickerDots, lengths_.pickerKeys);
        expectFrame("tableView", {0, top, width, height - top});
        expectFrame("launchMainAppLabel",
                    {(width - lengths_.messageWidth) / 2, 0, lengths_.messageWidth, height});
        EXPECT_EQ(label("launchMainAppLabel").font(), UIFont::systemFont(lengths_.messageFont));

        navigation_->pushViewController(std::make_shared<SelaSharedAlbumPassCheck>("12345", "Trips"), true);
        settle();
        expectCard(60);
        expectFrame("subTitleLabel", {0, top + lengths_.subTitle, width, lengths_.subTitleHeight});
        EXPECT_EQ(label("subTitleLabel").font(), UIFont::boldSystemFont(lengths_.subTitleFont));
        expectDotsAndKeys(count, dots, top + lengths_.subTitle + lengths_.subTitleHeight + lengths_.checkDots,
                          lengths_.checkKeys);
    }
    EXPECT_THAT(log_.lines(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Screens, UnlockLayoutTest, testing::ValuesIn(allLengths), [](const auto& test) {
    return "Width" + std::to_string(static_cast<int>(test.param.screen.width));
});

} // namespace
} // namespace sela
