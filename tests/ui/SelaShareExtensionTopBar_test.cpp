#include "ui/SelaShareExtensionTopBar.h"

#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"
#include "platform/uikit/UIWindow.h"
#include "ui/SelaShareExtensionTopBarDelegate.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace sela {
namespace {

struct RecordingDelegate : SelaShareExtensionTopBarDelegate {
    void topBarLeftButtonTouched() override { touched += "L"; }
    void topBarRightButtonTouched() override { touched += "R"; }
    std::string touched;
};

TEST(SelaShareExtensionTopBar, LeavesTheTitleWhatTheButtonsLeave) {
    for (const double width : {320.0, 160.0, 100.0}) {
        SelaShareExtensionTopBar bar(CGRect(0, 20, width, 44));
        bar.layoutIfNeeded();
        EXPECT_EQ(bar.leftButton().frame(), CGRect(0, 0, 80, 44)) << width;
        EXPECT_EQ(bar.rightButton().frame(), CGRect(width - 80, 0, 80, 44)) << width;
        EXPECT_EQ(bar.titleLabel().bounds().size, (CGSize{width - 160, 44})) << width;
        EXPECT_EQ(bar.titleLabel().center(), (CGPoint{width / 2, 22})) << width;
    }
}

TEST(SelaShareExtensionTopBar, FollowsItsOwnSize) {
    SelaShareExtensionTopBar bar(CGRect(0, 0, 320, 44));
    bar.layoutIfNeeded();
    bar.setFrame({0, 0, 400, 60});
    bar.layoutIfNeeded();
    EXPECT_EQ(bar.rightButton().frame(), CGRect(320, 0, 80, 60));
    EXPECT_EQ(bar.titleLabel().frame(), CGRect(80, 0, 240, 60));
}

TEST(SelaShareExtensionTopBar, LooksCalm) {
    SelaShareExtensionTopBar bar(CGRect{});
    const UIColor grey(0.2, 0.2, 0.2, 1);
    const auto regular = UIFont::systemFont(16);
    EXPECT_EQ(bar.leftButton().tintColor(), grey);
    EXPECT_EQ(bar.rightButton().tintColor(), grey);
    EXPECT_EQ(bar.titleLabel().textColor(), grey);
    EXPECT_EQ(bar.leftButton().titleLabel().font(), regular);
    EXPECT_EQ(bar.rightButton().titleLabel().font(), regular);
    EXPECT_EQ(bar.titleLabel().font(), UIFont::systemFont(16, UIFont::Weight::semibold));
    EXPECT_EQ(bar.titleLabel().textAlignment(), NSTextAlignment::center);
}

TEST(SelaShareExtensionTopBar, KeepsTheTitlesOfItsButtonsSixteenPointsFromTheEnds) {
    SelaShareExtensionTopBar bar(CGRect(0, 0, 320, 44));
    bar.leftButton().setTitle("Back");
    bar.rightButton().setTitle("Done");
    bar.layoutIfNeeded();
    EXPECT_NEAR(bar.leftButton().titleLabel().frame().minX(), 16, 1e-9);
    EXPECT_NEAR(bar.rightButton().titleLabel().frame().maxX(), 80 - 16, 1e-9);
}

TEST(SelaShareExtensionTopBar, TellsItsDelegateOfTapsWhileThereIsOne) {
    VirtualMainLoop loop;
    const ScopedMainQueue mainQueue(loop);
    UIWindow window(CGSize{320, 480});
    SelaShareExtensionTopBar bar(CGRect(0, 0, 320, 44));
    window.addSubview(bar);
    window.prepareFrame();
    const auto tap = [&](CGPoint point) {
        window.touchBegan(point);
        window.touchEnded(point);
        loop.runPending();
    };
    tap({10, 10});
    auto delegate = std::make_shared<RecordingDelegate>();
    bar.setDelegate(delegate);
    tap({10, 10});
    tap({310, 40});
    tap({160, 20});
    EXPECT_EQ(delegate->touched, "LR");
    delegate.reset();
    EXPECT_TRUE(bar.delegate().expired());
    tap({10, 10});
}

TEST(SelaShareExtensionTopBar, FromAnArchiveItIsEmpty) {
    SelaShareExtensionTopBar bar(NSCoder{});
    EXPECT_TRUE(bar.subviews().empty());
    EXPECT_TRUE(bar.delegate().expired());
    bar.onLeftButtonTouched(bar.leftButton());
}

} // namespace
} // namespace sela
