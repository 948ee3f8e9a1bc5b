#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/ViewTest.h"

#include <gmock/gmock.h>

#include <optional>

namespace sela {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AnimationTest : public ViewTest {
protected:
    AnimationTest() { window.addSubview(view); }

    /// Animates and records the report.
    void animate(double seconds, const std::function<void()>& changes) {
        UIView::animate(seconds, changes, [this](bool finished) { reports.push_back(finished); });
    }

    /// Animates the view by values of its horizontal place.
    void shake(double seconds, std::vector<double> values) {
        CAKeyframeAnimation animation("transform.translation.x");
        animation.duration = seconds;
        animation.values = std::move(values);
        view.layer().add(animation, "shake");
    }

    UIView view{{10, 20, 100, 50}};
    std::vector<bool> reports;
};

TEST_F(AnimationTest, ShowsEachPropertyOnItsWayWhileTheModelHasArrived) {
    view.setBackgroundColor(UIColor::white());
    animate(1, [&] {
        view.setAlpha(0);
        view.setFrame({110, 20, 200, 50});
        view.setTransform(CGAffineTransform::scale(0, 0));
        view.setBackgroundColor(UIColor::black());
    });
    EXPECT_EQ(view.alpha(), 0);
    EXPECT_EQ(view.layoutFrame(), CGRect(110, 20, 200, 50));
    EXPECT_EQ(view.presentation().alpha, 1);

    // The eased curve passes through its middle.
    loop.advance(0.25);
    EXPECT_NEAR(view.presentation().alpha, 0.85, 0.05);
    loop.advance(0.25);
    const UIView::Presentation half = view.presentation();
    EXPECT_NEAR(half.alpha, 0.5, 1e-9);
    EXPECT_NEAR(half.center.x, 135, 1e-9);
    EXPECT_NEAR(half.bounds.size.width, 150, 1e-9);
    EXPECT_NEAR(half.transform.a, 0.5, 1e-9);
    EXPECT_NEAR(half.backgroundColor->resolve(UIUserInterfaceStyle::light).red, 0.5, 1e-9);
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_FALSE(window.isIdle());
    loop.advance(0.5);
    EXPECT_THAT(reports, ElementsAre(true));
    EXPECT_EQ(view.presentation().alpha, 0);
    EXPECT_TRUE(window.isIdle());
    loop.runUntilIdle();
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(AnimationTest, WhatCutsAnAnimationShort) {
    std::optional<UIView> passing;
    const struct {
        const char* what;
        std::function<void()> interruption;
        std::vector<bool> reports;
        double shown; ///< alpha right after
    } cases[] = {
        {"nothing", [] {}, {}, 0.5},
        {"the same value again", [&] { view.setAlpha(0); }, {}, 0.5},
        {"another property", [&] { view.setTransform(CGAffineTransform::scale(2, 2)); }, {}, 0.5},
        {"another value", [&] { view.setAlpha(0.8); }, {false}, 0.8},
        {"another animation", [&] { UIView::animate(1, [&] { view.setAlpha(1); }); }, {false}, 0.5},
        {"leaving the window", [&] { view.removeFromSuperview(); }, {false}, 0},
        {"leaving with the superview", [&] { passing.reset(); }, {false}, 0},
        {"a place elsewhere in the window", [&] { window.addSubview(view); }, {}, 0.5},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        reports.clear();
        passing.emplace(CGRect(0, 0, 10, 10));
        window.addSubview(*passing);
        passing->addSubview(view);
        view.setAlpha(1);
        animate(1, [&] { view.setAlpha(0); });
        loop.advance(0.5);
        each.interruption();
        EXPECT_THAT(reports, IsEmpty()) << "reported within the interruption";
        EXPECT_NEAR(view.presentation().alpha, each.shown, 1e-9);
        loop.runPending();
        EXPECT_EQ(reports, each.reports);
        loop.runUntilIdle();
        EXPECT_EQ(reports, each.reports.empty() ? std::vector{true} : each.reports);
    }
}

TEST_F(AnimationTest, AGroupReportsOnceWhenItsLastPropertyIsOver) {
    UIView other;
    window.addSubview(other);
    animate(1, [&] {
        view.setAlpha(0);
        view.setAlpha(0.5);
        other.setAlpha(0);
    });
    loop.advance(0.5);
    view.setAlpha(1);
    loop.advance(0.4);
    EXPECT_THAT(reports, IsEmpty());
    loop.runUntilIdle();
    EXPECT_THAT(reports, ElementsAre(false));
}

TEST_F(AnimationTest, WithoutAChangeOrDurationItReportsInTheNextTurn) {
    animate(1, [] {});
    animate(0, [&] { view.setAlpha(0); });
    animate(1, [&] { UIView::performWithoutAnimation([&] { view.setCenter({0, 0}); }); });
    EXPECT_EQ(view.presentation().alpha, 0);
    EXPECT_EQ(view.presentation().center, (CGPoint{0, 0}));
    EXPECT_THAT(reports, IsEmpty());
    loop.runPending();
    EXPECT_THAT(reports, ElementsAre(true, true, true));
}

TEST_F(AnimationTest, AKeyHoldsOneAnimationOfWhatIsShown) {
    shake(0.5, {10, 10});
    loop.advance(0.25);
    shake(0.6, {-20, 20, -15, 15, -10, 10, -5, 5, 0});
    const std::pair<double, double> moments[] = {{0, -20}, {0.0375, 0}, {0.15, -15}, {0.5625, 2.5}};
    for (const auto& [time, x] : moments) {
        loop.advance(0.25 + time - loop.now());
        EXPECT_NEAR(view.presentation().transform.tx, x, 1e-9) << time;
    }
    EXPECT_EQ(view.frame(), CGRect(10, 20, 100, 50));
    EXPECT_FALSE(window.isIdle());
    loop.advance(0.0375);
    EXPECT_FALSE(view.layer().hasAnimations());
    EXPECT_TRUE(window.isIdle());
    shake(1, {10, 10});
    view.removeFromSuperview();
    EXPECT_FALSE(view.layer().hasAnimations());
}

TEST_F(AnimationTest, WhereMotionIsReducedChangesShowAtOnceAndReportInTheNextTurn) {
    UIAccessibility::setReduceMotionEnabled(true);
    shake(1, {-20, 20});
    UIActivityIndicatorView spinner;
    spinner.startAnimating();
    animate(1, [&] { view.setAlpha(0); });
    EXPECT_EQ(view.presentation().alpha, 0);
    EXPECT_THAT(reports, IsEmpty());
    loop.runPending();
    EXPECT_THAT(reports, ElementsAre(true));
    loop.advance(0.25);
    EXPECT_EQ(view.presentation().transform, CGAffineTransform());
    EXPECT_EQ(spinner.leadingSpoke(), 0);
    loop.advance(0.5);
    EXPECT_EQ(spinner.leadingSpoke(), 1);
    UIAccessibility::setReduceMotionEnabled(false);
}

TEST_F(AnimationTest, ASpinnerTurnsOnceASecondAndKeepsTheWindowIdle) {
    UIActivityIndicatorView spinner;
    window.addSubview(spinner);
    window.prepareFrame();
    window.takeDirtyRect();
    spinner.startAnimating();
    EXPECT_FALSE(spinner.isHidden());
    EXPECT_TRUE(window.isIdle());
    for (int spoke = 0; spoke < 2 * UIActivityIndicatorView::spokes; ++spoke) {
        EXPECT_EQ(spinner.leadingSpoke(), spoke % UIActivityIndicatorView::spokes);
        EXPECT_TRUE(window.needsFrame());
        EXPECT_EQ(window.takeDirtyRect(), CGRect(0, 0, 20, 20));
        loop.advance(1.0 / UIActivityIndicatorView::spokes);
    }
    spinner.stopAnimating();
    EXPECT_TRUE(spinner.isHidden());
    window.takeDirtyRect();
    EXPECT_FALSE(window.needsFrame());
}

} // namespace
} // namespace sela
