#include "platform/uikit/UIViewController.h"
#include "platform/uikit/ViewTest.h"
#include "ui/AUIButton.h"
#include "ui/SelaShareExtensionTopBar.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

namespace sela {
namespace {

using testing::ElementsAre;

/// A window for one control.
class ControlTest : public ViewTest {
protected:
    ControlTest() { window.setSize({400, 480}); }

    void show(UIView& control, const CGRect& frame) {
        window.addSubview(control);
        control.setFrame(frame);
        window.prepareFrame();
    }
};

struct AUIButtonTest : ControlTest {
    AUIButtonTest() { show(button_, {100, 100, 60, 40}); }

    AUIButton button_;
};

TEST_F(AUIButtonTest, ReportsTapsOverItsWholeAreaWhateverItShows) {
    EXPECT_EQ(button_.titleLabel().frame(), button_.bounds());
    EXPECT_EQ(button_.imageView().frame(), button_.bounds());
    tap({130, 120});
    std::vector<AUIButton*> tapped;
    button_.setCallback([&](AUIButton& button) { tapped.push_back(&button); });
    for (const bool showsNothing : {true, false}) {
        tapped.clear();
        button_.titleLabel().setHidden(showsNothing);
        button_.imageView().setHidden(showsNothing);
        for (const CGPoint point : {CGPoint{100, 100}, CGPoint{159, 139}, CGPoint{130, 120}})
            tap(point);
        EXPECT_THAT(tapped, ElementsAre(&button_, &button_, &button_));
        for (const CGPoint outside : {CGPoint{99, 120}, CGPoint{160, 120}, CGPoint{130, 140}})
            tap(outside);
        EXPECT_EQ(tapped.size(), 3u);
    }
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

TEST_F(AUIButtonTest, ATintColoursTitleAndImageAndNoTintChangesNothing) {
    const UIColor red(1, 0, 0, 1);
    button_.setTintColor(red);
    button_.setTintColor(std::nullopt);
    EXPECT_EQ(button_.titleLabel().textColor(), red);
    EXPECT_EQ(button_.imageView().tintColor(), red);
    EXPECT_EQ(button_.tintColor(), red);
}

struct RecordingDelegate : SelaShareExtensionTopBarDelegate {
    void topBarLeftButtonTouched() override { touched += "L"; }
    void topBarRightButtonTouched() override { touched += "R"; }
    std::string touched;
};

struct TopBarTest : ControlTest {
    SelaShareExtensionTopBar bar_{CGRect(0, 0, 320, 44)};
};

TEST_F(TopBarTest, LeavesTheTitleWhatTheButtonsLeave) {
    bar_.leftButton().setTitle("Back");
    bar_.rightButton().setTitle("Done");
    for (const auto& [width, height] : {CGSize{320, 44}, CGSize{160, 44}, CGSize{100, 60}}) {
        show(bar_, {0, 20, width, height});
        EXPECT_EQ(bar_.leftButton().frame(), CGRect(0, 0, 80, height)) << width;
        EXPECT_EQ(bar_.rightButton().frame(), CGRect(width - 80, 0, 80, height)) << width;
        EXPECT_EQ(bar_.titleLabel().bounds().size, (CGSize{width - 160, height})) << width;
        EXPECT_EQ(bar_.titleLabel().center(), (CGPoint{width / 2, height / 2})) << width;
        EXPECT_NEAR(bar_.leftButton().titleLabel().frame().minX(), 16, 1e-9);
        EXPECT_NEAR(bar_.rightButton().titleLabel().frame().maxX(), 80 - 16, 1e-9);
    }
}

TEST_F(TopBarTest, TellsItsDelegateOfTapsWhileThereIsOne) {
    show(bar_, {0, 0, 320, 44});
    tap({10, 10});
    auto delegate = std::make_shared<RecordingDelegate>();
    bar_.setDelegate(delegate);
    tap({10, 10});
    tap({310, 40});
    tap({160, 20});
    EXPECT_EQ(delegate->touched, "LR");
    delegate.reset();
    EXPECT_TRUE(bar_.delegate().expired()) << "it does not keep its delegate";
    tap({10, 10});
}

} // namespace
} // namespace sela
