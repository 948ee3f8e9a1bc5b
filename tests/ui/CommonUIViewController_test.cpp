#include "ui/CommonUIViewController.h"

#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/ViewTest.h"

#include <memory>
#include <optional>
#include <string>

namespace sela {
namespace {

struct Screen : CommonUIViewController {
    using CommonUIViewController::CommonUIViewController;
    using CommonUIViewController::report;
};

class CommonUIViewControllerTest : public ViewTest {
protected:
    CommonUIViewControllerTest() {
        window.setRootViewController(navigation_);
        window.prepareFrame();
        screen_->setCallback([this](std::optional<bool> result) {
            events_ += !result ? "none " : *result ? "true " : "false ";
        });
    }

    void settle() {
        window.prepareFrame();
        loop.runUntilIdle();
    }

    void present() {
        navigation_->present(screen_, false);
        settle();
        ASSERT_EQ(navigation_->presentedViewController(), screen_.get());
    }

    void push() {
        navigation_->pushViewController(screen_, false);
        settle();
    }

    void goBack() {
        UIBarButtonItem item(std::nullopt, screen_.get(), &CommonUIViewController::onBackButtonTouched);
        item.performAction();
        settle();
    }

    const UIViewController::Completion completion_ = [this] { events_ += "completion "; };
    std::shared_ptr<UINavigationController> navigation_ =
        std::make_shared<UINavigationController>(std::make_shared<UIViewController>());
    std::shared_ptr<Screen> screen_ = std::make_shared<Screen>();
    std::string events_;
};

TEST_F(CommonUIViewControllerTest, ADismissalReportsAfterTheCallersCompletionAndOnce) {
    for (const bool animated : {false, true}) {
        screen_ = std::make_shared<Screen>();
        screen_->setCallback([this](std::optional<bool> result) { events_ += result ? "value " : "none "; });
        present();
        events_.clear();
        screen_->dismiss(animated, completion_);
        settle();
        EXPECT_EQ(events_, "completion none ");
        EXPECT_TRUE(screen_->ifDismissed());
        EXPECT_FALSE(screen_->callback());

        screen_->setCallback([this](std::optional<bool>) { events_ += "again "; });
        present();
        screen_->dismiss(animated, completion_);
        settle();
        EXPECT_EQ(events_, "completion none completion ");
    }
}

TEST_F(CommonUIViewControllerTest, ADismissedScreenThatNobodyElseHoldsReportsWhenItIsGone) {
    present();
    const std::weak_ptr<Screen> weak = screen_;
    screen_->dismiss(true);
    screen_.reset();
    window.prepareFrame();
    loop.advance(UIViewController::presentationDuration / 2);
    EXPECT_EQ(events_, "");
    settle();
    EXPECT_EQ(events_, "none ");
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommonUIViewControllerTest, GoingBackPopsAndReportsOnceButOnlyFromANavigationController) {
    goBack();
    EXPECT_EQ(events_, "");
    for (int time = 0; time < 2; ++time) {
        push();
        goBack();
        EXPECT_EQ(navigation_->viewControllers().size(), 1u);
        EXPECT_EQ(events_, "none ");
    }
}

TEST_F(CommonUIViewControllerTest, TheFirstWayOutIsTheOnlyOneThatReports) {
    screen_->setCallback([this](std::optional<bool> result) {
        events_ += *result ? "true " : "false ";
        screen_->report(false);
    });
    push();
    screen_->report(true);
    goBack();
    screen_->dismiss(false, completion_);
    settle();
    EXPECT_EQ(events_, "true completion ");
}

} // namespace
} // namespace sela
