#include "ui/AUIButton.h"

#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"
#include "platform/uikit/UIWindow.h"

#include <gtest/gtest.h>

#include <vector>

namespace sela {
namespace {

class AUIButtonTest : public testing::Test {
protected:
    AUIButtonTest() {
        window_.addSubview(button_);
        button_.setFrame({100, 100, 60, 40});
        window_.prepareFrame();
    }

    void tap(CGPoint point) {
        window_.touchBegan(point);
        window_.touchEnded(point);
        loop_.runPending();
    }

    VirtualMainLoop loop_;
    ScopedMainQueue mainQueue_{loop_};
    UIWindow window_{CGSize{320, 480}};
    AUIButton button_;
};

TEST_F(AUIButtonTest, ShowsNothingButReportsTapsOverItsWholeArea) {
    EXPECT_TRUE(button_.titleLabel().isHidden());
    EXPECT_TRUE(button_.imageView().isHidden());
    tap({130, 120});

    std::vector<AUIButton*> tapped;
    button_.setCallback([&](AUIButton& button) { tapped.push_back(&button); });
    for (const CGPoint point : {CGPoint{100, 100}, CGPoint{159, 139}, CGPoint{130, 120}})
        tap(point);
    EXPECT_EQ(tapped, std::vector<AUIButton*>(3, &button_));
    for (const CGPoint outside : {CGPoint{99, 120}, CGPoint{160, 120}, CGPoint{130, 140}})
        tap(outside);
    EXPECT_EQ(tapped.size(), 3u);
}

TEST_F(AUIButtonTest, ReportsTapsOnWhatItShows) {
    int taps = 0;
    button_.setCallback([&](AUIButton&) { ++taps; });
    button_.titleLabel().setHidden(false);
    button_.imageView().setHidden(false);
    tap({130, 120});
    EXPECT_EQ(taps, 1);
}

TEST_F(AUIButtonTest, ACallbackMayTakeItselfAway) {
    int taps = 0;
    button_.setCallback([&](AUIButton& button) {
        button.setCallback(nullptr);
        ++taps;
    });
    tap({130, 120});
    tap({130, 120});
    EXPECT_EQ(taps, 1);
}

TEST_F(AUIButtonTest, TitleAndImageFillIt) {
    const CGRect whole{0, 0, 60, 40};
    EXPECT_EQ(button_.titleLabel().frame(), whole);
    EXPECT_EQ(button_.imageView().frame(), whole);
    EXPECT_EQ(button_.titleLabel().textAlignment(), NSTextAlignment::center);
    button_.setFrame({0, 0, 20, 80});
    window_.prepareFrame();
    EXPECT_EQ(button_.titleLabel().frame(), (CGRect{0, 0, 20, 80}));
    EXPECT_EQ(button_.subviews(), (std::vector<UIView*>{&button_.titleLabel(), &button_.imageView()}));
}

TEST_F(AUIButtonTest, ATintColoursTitleAndImageAndNoTintChangesNothing) {
    const UIColor red(1, 0, 0, 1);
    button_.setTintColor(red);
    button_.setTintColor(std::nullopt);
    EXPECT_EQ(button_.titleLabel().textColor(), red);
    EXPECT_EQ(button_.imageView().tintColor(), red);
    EXPECT_EQ(button_.tintColor(), red);

    const UIColor blue(0, 0, 1, 1);
    button_.imageView().setTintColor(blue);
    EXPECT_EQ(button_.tintColor(), blue);
    EXPECT_EQ(button_.titleLabel().textColor(), red);
}

TEST(AUIButtonDeathTest, IsMadeWithoutArgumentsOnly) {
    EXPECT_DEATH(AUIButton(CGRect(0, 0, 10, 10)), "unimplemented initializer 'init\\(frame:\\)'");
    EXPECT_DEATH(AUIButton(NSCoder{}), "init\\(coder:\\) has not been implemented");
}

} // namespace
} // namespace sela
