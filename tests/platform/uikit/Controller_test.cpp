#include "platform/uikit/UIButton.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/ViewTest.h"
#include "support/RightToLeft.h"

#include <gmock/gmock.h>

#include <memory>

namespace sela {
namespace {

using testing::ElementsAre;

using Journal = std::vector<std::string>;

/// Writes the steps of its life into a journal.
class Screen : public UIViewController {
public:
    Screen(std::string name, Journal& journal) : name_(std::move(name)), journal_(journal) {}
    ~Screen() override { journal_.push_back(name_ + " gone"); }

    void viewDidLoad() override { note("didLoad"); }
    void viewWillAppear(bool animated) override { note("willAppear", animated); }
    void viewDidAppear(bool) override { note("didAppear"); }
    void viewWillDisappear(bool animated) override { note("willDisappear", animated); }
    void viewDidDisappear(bool) override { note("didDisappear"); }
    void viewDidLayoutSubviews() override { layoutWidths.push_back(view().bounds().size.width); }

    std::vector<double> layoutWidths;
    UIView box{{0, 0, 50, 50}};

private:
    void note(const std::string& what, bool animated = false) {
        journal_.push_back(name_ + " " + what + (animated ? " animated" : ""));
    }

    std::string name_;
    Journal& journal_;
};

class ControllerTest : public ViewTest {
protected:
    /// The screens are destroyed before the journal.
    ~ControllerTest() override {
        window.setRootViewController(nullptr);
        loop.runUntilIdle();
    }

    std::shared_ptr<Screen> screen(const char* name) { return std::make_shared<Screen>(name, journal); }

    /// The steps since the last call.
    Journal steps() { return std::exchange(journal, {}); }

    Journal journal;
};

TEST_F(ControllerTest, TheRootAppearsWithItsViewAndFollowsTheWindowsSize) {
    const std::shared_ptr<Screen> a = screen("a");
    EXPECT_FALSE(a->isViewLoaded());
    EXPECT_EQ(a->view().frame(), CGRect(0, 0, 300, 400));
    window.setRootViewController(a);
    EXPECT_THAT(steps(), ElementsAre("a didLoad", "a willAppear", "a didAppear"));
    window.prepareFrame();
    window.setSize({500, 200});
    window.prepareFrame();
    EXPECT_THAT(a->layoutWidths, ElementsAre(300, 500));
    EXPECT_EQ(UIScreen::main().bounds(), CGRect(0, 0, 300, 400)) << "later screens get another scale";
    window.setRootViewController(nullptr);
    EXPECT_THAT(steps(), ElementsAre("a willDisappear", "a didDisappear"));
}

class NavigationTest : public ControllerTest {
protected:
    NavigationTest() {
        navigation->setNavigationBarHidden(true);
        window.setRootViewController(navigation);
        window.prepareFrame();
        steps();
    }

    std::shared_ptr<Screen> root = screen("root");
    std::shared_ptr<UINavigationController> navigation = std::make_shared<UINavigationController>(root);
};

TEST_F(NavigationTest, ScreensSlideInFromWhereReadingEnds) {
    for (const bool fromRight : {false, true}) {
        const auto direction = fromRight ? std::make_unique<RightToLeft>() : nullptr;
        const double sign = fromRight ? -1 : 1;
        const std::shared_ptr<Screen> a = screen("a");
        steps();
        navigation->pushViewController(a, true);
        EXPECT_THAT(steps(),
                    ElementsAre("a didLoad", "root willDisappear animated", "a willAppear animated"));
        EXPECT_EQ(navigation->topViewController(), a.get());
        EXPECT_EQ(a->navigationController(), navigation.get());
        EXPECT_EQ(a->view().presentation().transform.tx, sign * 300);
        loop.advance(UINavigationController::transitionDuration / 2);
        EXPECT_NEAR(a->view().presentation().transform.tx, sign * 150, 1e-6);
        EXPECT_NEAR(root->view().presentation().transform.tx, sign * -45, 1e-6);
        EXPECT_EQ(window.hitTest({10, 10}), &window) << "a screen took a touch while it slid";
        loop.advance(UINavigationController::transitionDuration / 2);
        EXPECT_THAT(steps(), ElementsAre("root didDisappear", "a didAppear"));
        EXPECT_EQ(root->view().superview(), nullptr);
        EXPECT_EQ(window.hitTest({10, 10}), &a->view());
        EXPECT_TRUE(window.isIdle());
        EXPECT_EQ(navigation->popViewController(true), a);
        EXPECT_NEAR(root->view().presentation().transform.tx, sign * -90, 1e-6);
        loop.runUntilIdle();
    }
}

TEST_F(NavigationTest, APopGivesTheScreenUpWhenItHasSlidAway) {
    std::shared_ptr<Screen> a = screen("a");
    navigation->pushViewController(a, false);
    steps();
    navigation->popViewController(true);
    EXPECT_EQ(a->navigationController(), nullptr);
    a.reset();
    EXPECT_THAT(steps(), ElementsAre("a willDisappear animated", "root willAppear animated"));
    loop.advance(UINavigationController::transitionDuration);
    EXPECT_THAT(steps(), ElementsAre("a didDisappear", "root didAppear", "a gone"));
    EXPECT_EQ(navigation->popViewController(true), nullptr);
}

TEST_F(NavigationTest, TransitionsThatOverlapEndInTheRightScreen) {
    const std::shared_ptr<Screen> a = screen("a");
    navigation->pushViewController(a, true);
    loop.advance(0.1);
    navigation->popViewController(true);
    loop.advance(0.1);
    navigation->pushViewController(screen("b"), true);
    navigation->pushViewController(screen("c"), true);
    EXPECT_EQ(navigation->viewControllers().size(), 3u);
    loop.runUntilIdle();
    EXPECT_FALSE(navigation->isTransitioning());
    EXPECT_THAT(navigation->view().subviews(), ElementsAre(&navigation->topViewController()->view()));
    EXPECT_EQ(navigation->topViewController()->view().transform(), CGAffineTransform());
    EXPECT_TRUE(navigation->view().isUserInteractionEnabled());
}

TEST_F(NavigationTest, AScreenMayPopItselfAtOnceFromItsOwnMethod) {
    std::shared_ptr<Screen> a = screen("a");
    const std::weak_ptr<Screen> popping = a;
    Screen& self = *a;
    navigation->pushViewController(std::move(a), false);
    self.navigationController()->popViewController(false);
    EXPECT_FALSE(popping.expired()) << "gone while its method runs";
    loop.runPending();
    EXPECT_TRUE(popping.expired());
}

TEST_F(NavigationTest, EverythingMayGoWhileScreensSlideAndAnimationsRun) {
    const std::weak_ptr<Screen> a = [&] {
        const std::shared_ptr<Screen> pushed = screen("a");
        navigation->pushViewController(pushed, true);
        pushed->view().addSubview(pushed->box);
        UIView::animate(
            2, [&] { pushed->box.setAlpha(0); },
            [weak = std::weak_ptr(pushed), this](bool finished) {
                journal.push_back(finished || !weak.expired() ? "wrong" : "cut short");
            });
        loop.asyncAfter(1, [weak = std::weak_ptr(pushed)] { EXPECT_TRUE(weak.expired()); });
        return std::weak_ptr(pushed);
    }();
    loop.advance(0.1);
    steps();
    root.reset();
    navigation.reset();
    window.setRootViewController(nullptr);
    EXPECT_TRUE(a.expired());
    loop.runUntilIdle();
    EXPECT_THAT(steps(), testing::Contains("cut short"));
    EXPECT_TRUE(window.isIdle());
}

TEST_F(NavigationTest, ATouchDoesNotOutliveTheStartOfASlide) {
    UIButton button({0, 0, 50, 50});
    root->view().addSubview(button);
    window.touchBegan({10, 10});
    EXPECT_TRUE(button.isHighlighted());
    navigation->pushViewController(screen("a"), true);
    EXPECT_FALSE(button.isHighlighted());
}

TEST_F(NavigationTest, TheStackFollowsItsContainersSize) {
    const std::shared_ptr<Screen> a = screen("a");
    navigation->pushViewController(a, true);
    navigation->view().setFrame({20, 20, 200, 100});
    window.layoutIfNeeded();
    EXPECT_EQ(a->view().layoutFrame(), CGRect(0, 0, 200, 100));
    EXPECT_EQ(a->layoutWidths.back(), 200);
}

} // namespace
} // namespace sela
