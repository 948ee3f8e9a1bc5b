#include "platform/snapkit/ConstraintViewDSL.h"

#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/ViewTest.h"
#include "support/FixedTextMeasurer.h"
#include "support/LogCapture.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>

namespace sela {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

/// Expects a frame to 1e-9 points.
void expectFrame(const UIView& view, const CGRect& expected) {
    const CGRect frame = view.frame();
    const double differences[] = {frame.origin.x - expected.origin.x, frame.origin.y - expected.origin.y,
                                  frame.size.width - expected.size.width,
                                  frame.size.height - expected.size.height};
    for (const double difference : differences)
        EXPECT_NEAR(difference, 0, 1e-9) << testing::PrintToString(frame);
}

class LayoutTest : public testing::Test {
protected:
    LayoutTest() {
        root_.addSubview(a_);
        root_.addSubview(b_);
    }

    FixedTextMeasurer text_;
    UIView root_{CGRect(0, 0, 320, 480)};
    UIView a_;
    UIView b_;
};

TEST_F(LayoutTest, WhatTheWordsMean) {
    const UIEdgeInsets insets{1, 2, 4, 8};
    const struct {
        const char* what;
        std::function<void(ConstraintMaker&)> body;
        CGRect frame;
    } cases[] = {
        {"numbers are lengths and distances from the superview",
         [](auto& make) {
             make.left().top().equalTo(10);
             make.right().bottom().equalTo(-10);
         },
         {10, 10, 300, 460}},
        {"a composite relates attribute by attribute",
         [this](auto& make) {
             make.size().equalTo(a_).multipliedBy(0.5).offset(2);
             make.center().equalTo(a_.snp().center()).offset(4);
         },
         {164 - 71, 244 - 111, 142, 222}},
        {"one attribute serves several",
         [this](auto& make) {
             make.width().height().equalTo(a_.snp().width());
             make.top().equalTo(a_.snp().bottom());
             make.right().equalTo(a_.snp().centerX());
         },
         {-120, 460, 280, 280}},
        {"edges move inwards",
         [&](auto& make) { make.edges().equalToSuperview().inset(insets); },
         {2, 1, 310, 475}},
        {"so do centres and sizes",
         [&](auto& make) { make.size().center().equalToSuperview().inset(insets); },
         {2, 1, 310, 475}},
    };
    a_.snp().makeConstraints([](ConstraintMaker& make) { make.edges().equalToSuperview().inset(20); });
    a_.setTransform(CGAffineTransform::scale(0, 0)); // changes what is seen, not the layout
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        b_.snp().remakeConstraints(each.body);
        root_.layoutIfNeeded();
        EXPECT_EQ(a_.layoutFrame(), CGRect(20, 20, 280, 440));
        expectFrame(b_, each.frame);
    }
}

TEST_F(LayoutTest, WhatStaysOpenIsNaturalAndThenZero) {
    UILabel label;
    UIActivityIndicatorView spinner;
    root_.addSubview(label);
    root_.addSubview(spinner);
    label.setText("Add");
    label.setNumberOfLines(0);
    label.snp().makeConstraints([](ConstraintMaker& make) { make.right().equalTo(-10); });
    spinner.snp().makeConstraints([](ConstraintMaker& make) { make.center().equalToSuperview(); });
    a_.snp().makeConstraints([](ConstraintMaker& make) { make.centerX().equalToSuperview(); });
    root_.layoutIfNeeded();
    const CGSize natural = label.intrinsicContentSize();
    EXPECT_GT(natural.width, 0);
    expectFrame(label, {310 - natural.width, 0, natural.width, natural.height});
    expectFrame(spinner, {150, 230, 20, 20});
    expectFrame(a_, {160, 0, 0, 0});
    label.setText("a longer text");
    root_.layoutIfNeeded();
    EXPECT_GT(label.frame().size.width, natural.width + 10);
    EXPECT_NEAR(label.frame().maxX(), 310, 1e-9);
    label.snp().remakeConstraints([&](ConstraintMaker& make) { make.width().equalTo(natural.width + 5); });
    root_.layoutIfNeeded();
    EXPECT_GE(label.frame().size.height, 2 * natural.height) << "a label that is narrower than its text";
    label.setNumberOfLines(1);
    root_.layoutIfNeeded();
    EXPECT_EQ(label.frame().size.height, natural.height);
}

TEST_F(LayoutTest, PriorityDecidesAndThenOrderAndAConflictIsLoggedOncePerLineOfSource) {
    const LogCapture log;
    UIView rows[] = {UIView("arrow"), UIView("arrow")};
    unsigned line = 0;
    for (UIView& row : rows) {
        root_.addSubview(row);
        row.snp().makeConstraints([&](ConstraintMaker& make) {
            line = __LINE__ + 1;
            make.height().equalTo(30).priority(ConstraintPriority::low);
            make.size().equalTo(CGSize{20, 20});
            make.width().equalTo(18);
        });
    }
    root_.layoutIfNeeded();
    root_.setFrame({0, 0, 100, 100});
    root_.layoutIfNeeded();
    for (UIView& row : rows)
        expectFrame(row, {0, 0, 20, 20});
    const auto conflict = [&](unsigned place, const char* what) {
        return AllOf(HasSubstr("Layout_test.cpp:" + std::to_string(place)), HasSubstr(what));
    };
    EXPECT_THAT(log.lines(), UnorderedElementsAre(conflict(line, "height of UIView arrow"),
                                                  conflict(line + 2, "width of UIView arrow")));
}

TEST_F(LayoutTest, LinesReachAcrossTheTreeAndMultipliedPlacesCountFromTheNearestCommonView) {
    UIView inside, twin, beside, fixed({30, 17, 5, 5});
    root_.setBounds({0, 5, 320, 480}); // scrolled, as is what is in it
    a_.setFrame({20, 35, 200, 100});
    a_.setBounds({0, 7, 200, 100});
    a_.addSubview(fixed);
    a_.addSubview(inside);
    a_.addSubview(twin);
    b_.addSubview(beside);
    beside.snp().makeConstraints([&](ConstraintMaker& make) {
        make.right().bottom().equalTo(inside);
        make.left().equalTo(fixed.snp().centerX());
        make.top().equalTo(fixed);
    });
    b_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(40);
        make.left().equalTo(100);
        make.top().equalTo(50);
    });
    inside.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(10);
        make.left().top().equalTo(b_);
    });
    twin.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(10);
        make.left().equalTo(root_.snp().right()).multipliedBy(0.5);
        make.bottom().equalTo(inside).multipliedBy(2);
    });
    const auto expectFrames = [&] {
        root_.layoutIfNeeded();
        expectFrame(inside, {100 - 20, 50 - 30 + 7, 10, 10});
        expectFrame(beside, {52.5 - 100, 40 - 50, 110 - 52.5, 60 - 40});
        expectFrame(twin, {160 - 20, 80 - 30 + 7, 10, 10});
    };
    expectFrames();
    a_.setNeedsLayout();
    inside.snp().makeConstraints([](ConstraintMaker& make) { make.width().equalTo(10); });
    expectFrames();
}

TEST_F(LayoutTest, ALineSleepsWhileItsViewsAreInDifferentTrees) {
    UIView elsewhere{CGRect(0, 0, 50, 50)};
    auto target = std::make_unique<UIView>(CGRect(50, 60, 10, 10));
    a_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(20);
        make.center().equalTo(*target);
    });
    const auto laidOut = [&] {
        root_.layoutIfNeeded();
        elsewhere.layoutIfNeeded();
        return a_.frame();
    };
    root_.addSubview(*target);
    EXPECT_EQ(laidOut(), CGRect(45, 55, 20, 20));
    target->removeFromSuperview();
    EXPECT_EQ(laidOut(), CGRect(0, 0, 20, 20));
    root_.addSubview(*target);
    EXPECT_EQ(laidOut(), CGRect(45, 55, 20, 20));
    elsewhere.addSubview(a_);
    EXPECT_EQ(laidOut(), CGRect(0, 0, 20, 20));
    root_.addSubview(a_);
    EXPECT_EQ(laidOut(), CGRect(45, 55, 20, 20));
    target.reset();
    EXPECT_EQ(laidOut(), CGRect(0, 0, 20, 20));
}

} // namespace
} // namespace sela
