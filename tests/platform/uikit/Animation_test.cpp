#include "platform/uikit/CAMediaTimingFunction.h"
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

    AnimationGroup::Completion report() {
        return [this](bool finished) { reports.push_back(finished); };
    }

    UIView view{{10, 20, 100, 50}};
    std::vector<bool> reports;
};

TEST_F(AnimationTest, ShowsEachPropertyOnItsWayWhileTheModelHasArrived) {
    view.setBackgroundColor(UIColor::white());
    UIView::animate(
        1,
        [&] {
            view.setAlpha(0);
            view.setFrame({110, 20, 200, 50});
            view.setTransform(CGAffineTransform::scale(0, 0));
            view.setBackgroundColor(UIColor::black());
        },
        report());
    EXPECT_EQ(view.alpha(), 0);
    EXPECT_EQ(view.layoutFrame(), CGRect(110, 20, 200, 50));
    EXPECT_EQ(view.presentation().alpha, 1);

    // The eased curve is symmetric and passes through its middle.
    loop.advance(0.25);
    const double quarter = 1 - view.presentation().alpha;
    EXPECT_GT(quarter, 0.1);
    EXPECT_LT(quarter, 0.2);
    loop.advance(0.25);
    const UIView::Presentation half = view.presentation();
    EXPECT_NEAR(half.alpha, 0.5, 1e-9);
    EXPECT_NEAR(half.center.x, 135, 1e-9);
    EXPECT_NEAR(half.bounds.size.width, 150, 1e-9);
    EXPECT_NEAR(half.transform.a, 0.5, 1e-9);
    EXPECT_NEAR(half.backgroundColor->resolve(UIUserInterfaceStyle::light).red, 0.5, 1e-9);
    loop.advance(0.25);
    EXPECT_NEAR(view.presentation().alpha, quarter, 1e-9);
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_FALSE(window.isIdle());

    loop.advance(0.25);
    EXPECT_THAT(reports, ElementsAre(true));
    EXPECT_EQ(view.presentation().alpha, 0);
    EXPECT_TRUE(window.isIdle());
    loop.runUntilIdle();
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(AnimationTest, WhatCutsAnAnimationShort) {
    struct Case {
        const char* what;
        std::function<void()> interruption;
        std::vector<bool> reports;
        double shown; ///< alpha right after
    };
    std::optional<UIView> passing;
    const Case cases[] = {
        {"nothing", [] {}, {}, 0.5},
        {"the same value again", [&] { view.setAlpha(0); }, {}, 0.5},
        {"another property",
         [&] {
             view.setCenter({1, 1});
         },
         {},
         0.5},
        {"another value", [&] { view.setAlpha(0.8); }, {false}, 0.8},
        {"another animation", [&] { UIView::animate(1, [&] { view.setAlpha(1); }); }, {false}, 0.5},
        {"leaving the window", [&] { view.removeFromSuperview(); }, {false}, 0},
        {"leaving with the superview", [&] { passing.reset(); }, {false}, 0},
        {"a place elsewhere in the window", [&] { window.addSubview(view); }, {}, 0.5},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        reports.clear();
        passing.emplace(CGRect(0, 0, 10, 10));
        window.addSubview(*passing);
        passing->addSubview(view);
        view.setAlpha(1);
        UIView::animate(
            1, [&] { view.setAlpha(0); }, report());
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
    UIView::animate(
        1,
        [&] {
            view.setAlpha(0);
            view.setAlpha(0.5);
            other.setAlpha(0);
        },
        report());
    loop.advance(0.5);
    view.setAlpha(1);
    loop.advance(0.4);
    EXPECT_THAT(reports, IsEmpty());
    loop.runUntilIdle();
    EXPECT_THAT(reports, ElementsAre(false));
}

TEST_F(AnimationTest, WithoutAChangeOrDurationItReportsInTheNextTurn) {
    UIView::animate(
        1, [] {}, report());
    UIView::animate(
        0, [&] { view.setAlpha(0); }, report());
    EXPECT_EQ(view.presentation().alpha, 0);
    EXPECT_THAT(reports, IsEmpty());
    loop.runPending();
    EXPECT_THAT(reports, ElementsAre(true, true));
}

TEST_F(AnimationTest, AViewThatIsDestroyedEndsItsAnimation) {
    {
        UIView shortLived;
        window.addSubview(shortLived);
        UIView::animate(
            1, [&] { shortLived.setAlpha(0); }, report());
        shortLived.layer().add(CAKeyframeAnimation("transform.translation.x"), "shake");
    }
    loop.runUntilIdle();
    EXPECT_THAT(reports, ElementsAre(false));
}

TEST_F(AnimationTest, ChangesInsideALayoutPassOfTheBlockAreAnimatedUnlessTheyAreKeptOut) {
    UIView::animate(1, [&] {
        view.setAlpha(0);
        UIView::performWithoutAnimation([&] { view.setCenter({0, 0}); });
    });
    EXPECT_EQ(view.presentation().center, (CGPoint{0, 0}));
    EXPECT_EQ(view.presentation().alpha, 1);
}

TEST_F(AnimationTest, KeyframesMoveWhatIsShownAndNothingElse) {
    CAKeyframeAnimation shake("transform.translation.x");
    shake.duration = 0.6;
    shake.values = {-20, 20, -15, 15, -10, 10, -5, 5, 0};
    view.layer().add(shake, "shake");
    struct Moment {
        double time;
        double x;
    };
    for (const Moment& moment :
         {Moment{0, -20}, Moment{0.0375, 0}, Moment{0.075, 20}, Moment{0.15, -15}, Moment{0.5625, 2.5}}) {
        loop.advance(moment.time - loop.now());
        EXPECT_NEAR(view.presentation().transform.tx, moment.x, 1e-9) << moment.time;
    }
    EXPECT_EQ(view.frame(), CGRect(10, 20, 100, 50));
    EXPECT_FALSE(window.isIdle());
    loop.advance(0.6 - loop.now());
    EXPECT_EQ(view.layer().animation("shake"), nullptr);
    EXPECT_EQ(view.presentation().transform, CGAffineTransform());
    EXPECT_TRUE(window.isIdle());
}

TEST_F(AnimationTest, AKeyHoldsOneAnimation) {
    CAKeyframeAnimation shake("transform.translation.x");
    shake.duration = 1;
    shake.values = {10, 10};
    view.layer().add(shake, "shake");
    loop.advance(0.5);
    view.layer().add(shake, "shake");
    EXPECT_EQ(view.presentation().transform.tx, 10);
    loop.advance(0.75);
    ASSERT_NE(view.layer().animation("shake"), nullptr) << "the first one's end took the second one away";
    loop.advance(0.25);
    EXPECT_EQ(view.layer().animation("shake"), nullptr);
    view.layer().add(shake, "shake");
    view.removeFromSuperview();
    EXPECT_FALSE(view.layer().hasAnimations());
}

TEST_F(AnimationTest, WhereMotionIsReducedChangesShowAtOnceAndReportInTheNextTurn) {
    UIAccessibility::setReduceMotionEnabled(true);
    CAKeyframeAnimation shake("transform.translation.x");
    shake.duration = 1;
    shake.values = {-20, 20};
    view.layer().add(shake, "shake");
    UIActivityIndicatorView spinner;
    spinner.startAnimating();
    UIView::animate(
        1, [&] { view.setAlpha(0); }, report());
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
    EXPECT_TRUE(spinner.isHidden());
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

TEST(CAMediaTimingFunction, PassesThroughKnownPoints) {
    const CAMediaTimingFunction eased = CAMediaTimingFunction::easeInEaseOut();
    // Values of the curve with control points (0.42, 0) and (0.58, 1), to three places.
    EXPECT_EQ(eased.value(-1), 0);
    EXPECT_NEAR(eased.value(0.1), 0.020, 5e-4);
    EXPECT_NEAR(eased.value(0.25), 0.129, 5e-4);
    EXPECT_NEAR(eased.value(0.5), 0.5, 1e-9);
    EXPECT_NEAR(eased.value(0.75), 0.871, 5e-4);
    EXPECT_EQ(eased.value(2), 1);
    for (double time = 0; time <= 1; time += 0.1)
        EXPECT_NEAR(CAMediaTimingFunction::linear().value(time), time, 1e-9);
}

} // namespace

} // namespace sela
