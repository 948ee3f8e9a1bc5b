#include "platform/snapkit/ConstraintViewDSL.h"

#include "platform/snapkit/LayoutTest.h"
#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "support/RightToLeft.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>

namespace sela {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

class LayoutTest : public testing::Test {
protected:
    LayoutTest() {
        root_.addSubview(a_);
        root_.addSubview(b_);
    }

    UIView root_{CGRect(0, 0, 320, 480)};
    UIView a_;
    UIView b_;
};

TEST_F(LayoutTest, NumbersAreLengthsForSizesAndDistancesFromTheSuperviewForPlaces) {
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.left().top().equalTo(10);
        make.width().height().equalTo(30);
    });
    b_.snp().makeConstraints([](ConstraintMaker& make) {
        make.right().bottom().equalTo(-10);
        make.size().equalTo(CGSize{50, 60});
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {10, 10, 30, 30});
    expectFrame(b_, {260, 410, 50, 60});
}

TEST_F(LayoutTest, CompositesRelateAttributeByAttribute) {
    a_.snp().makeConstraints([](ConstraintMaker& make) { make.edges().equalToSuperview().inset(20); });
    b_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(a_).multipliedBy(0.5).offset(2);
        make.center().equalTo(a_.snp().center()).offset(4);
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {20, 20, 280, 440});
    expectFrame(b_, {164 - 71, 244 - 111, 142, 222});
}

TEST_F(LayoutTest, OneAttributeMayServeSeveral) {
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.leading().top().equalToSuperview().offset(8);
        make.trailing().equalToSuperview().offset(-8);
        make.height().equalTo(44);
    });
    b_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().height().equalTo(a_.snp().height());
        make.top().equalTo(a_.snp().bottom());
        make.right().equalTo(a_.snp().centerX());
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {8, 8, 304, 44});
    expectFrame(b_, {116, 52, 44, 44});
}

TEST_F(LayoutTest, LeadingAndTrailingMirrorWhereReadingBeginsAtTheRight) {
    const UIEdgeInsets insets{0, 3, 0, 7};
    UIView c;
    root_.addSubview(c);
    const auto layOut = [&] {
        a_.snp().remakeConstraints([&](ConstraintMaker& make) {
            make.leading().equalToSuperview().offset(20);
            make.trailing().equalToSuperview().multipliedBy(0.5).offset(-5);
            make.height().top().equalToSuperview();
        });
        b_.snp().remakeConstraints([&](ConstraintMaker& make) {
            make.leading().equalTo(a_.snp().trailing()).offset(8);
            make.trailing().equalTo(a_.snp().centerX()).offset(100);
            make.height().top().equalToSuperview();
        });
        c.snp().remakeConstraints([&](ConstraintMaker& make) {
            make.leading().trailing().equalToSuperview().inset(insets);
            make.height().top().equalToSuperview();
        });
        root_.layoutIfNeeded();
    };
    layOut();
    const CGRect a = a_.frame(), b = b_.frame();
    expectFrame(a_, {20, 0, 135, 480});
    expectFrame(b_, {163, 0, 24.5, 480});
    expectFrame(c, {3, 0, 310, 480});
    const RightToLeft fromRight;
    layOut();
    expectFrame(a_, {320 - a.maxX(), 0, a.size.width, 480});
    expectFrame(b_, {320 - b.maxX(), 0, b.size.width, 480});
    expectFrame(c, {3, 0, 310, 480}); // insets name their sides
}

TEST_F(LayoutTest, InsetsMoveEdgesInwards) {
    const UIEdgeInsets insets{1, 2, 4, 8};
    a_.snp().makeConstraints([&](ConstraintMaker& make) { make.edges().equalToSuperview().inset(insets); });
    b_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalToSuperview().inset(insets);
        make.center().equalToSuperview().inset(insets);
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {2, 1, 310, 475});
    expectFrame(b_, {2, 1, 310, 475});
}

TEST_F(LayoutTest, MultipliedPlacesCountFromTheNearestCommonView) {
    UIView card, inner;
    root_.addSubview(card);
    card.addSubview(inner);
    card.snp().makeConstraints([](ConstraintMaker& make) {
        make.left().top().equalTo(100);
        make.size().equalTo(CGSize{80, 40});
    });
    inner.snp().makeConstraints([](ConstraintMaker& make) {
        make.centerX().equalToSuperview().multipliedBy(0.5);
        make.top().equalTo(0);
        make.size().equalTo(CGSize{10, 10});
    });
    a_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.right().equalTo(inner.snp().left()).multipliedBy(0.5);
        make.size().equalTo(CGSize{10, 10});
    });
    root_.layoutIfNeeded();
    expectFrame(inner, {15, 0, 10, 10});
    expectFrame(a_, {47.5, 0, 10, 10});
}

TEST_F(LayoutTest, WhatStaysOpenIsNaturalAndThenZero) {
    UILabel label;
    UIActivityIndicatorView spinner;
    root_.addSubview(label);
    root_.addSubview(spinner);
    label.setText("Add");
    label.snp().makeConstraints([](ConstraintMaker& make) { make.right().equalTo(-10); });
    spinner.snp().makeConstraints([](ConstraintMaker& make) { make.center().equalToSuperview(); });
    a_.snp().makeConstraints([](ConstraintMaker& make) { make.centerX().equalToSuperview(); });
    root_.layoutIfNeeded();
    const CGSize natural = label.intrinsicContentSize();
    EXPECT_GT(natural.width, 0);
    expectFrame(label, {310 - natural.width, 0, natural.width, natural.height});
    expectFrame(spinner, {150, 230, 20, 20});
    expectFrame(a_, {160, 0, 0, 0});
}

TEST_F(LayoutTest, ALabelNarrowerThanItsTextGrowsInHeight) {
    UILabel label;
    root_.addSubview(label);
    label.setText("Please launch the main app first, and then come back");
    label.setNumberOfLines(0);
    label.snp().makeConstraints([](ConstraintMaker& make) {
        make.width().equalTo(100);
        make.center().equalToSuperview();
    });
    root_.layoutIfNeeded();
    EXPECT_EQ(label.frame().size.width, 100);
    EXPECT_GE(label.frame().size.height, 2 * label.intrinsicContentSize().height);
    EXPECT_NEAR(label.frame().midY(), 240, 1e-9);
}

TEST_F(LayoutTest, ANewNaturalSizeIsLaidOutAnew) {
    UILabel label;
    root_.addSubview(label);
    label.snp().makeConstraints([](ConstraintMaker& make) { make.left().top().equalToSuperview(); });
    a_.snp().makeConstraints([&](ConstraintMaker& make) { make.left().equalTo(label.snp().right()); });
    label.setText("i");
    root_.layoutIfNeeded();
    const double narrow = a_.frame().origin.x;
    label.setText("a much longer text");
    root_.layoutIfNeeded();
    EXPECT_GT(a_.frame().origin.x, narrow + 10);
    EXPECT_EQ(a_.frame().origin.x, label.frame().size.width);
}

TEST_F(LayoutTest, ASizeMayComeOutNegative) {
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.left().equalToSuperview().offset(200);
        make.right().equalToSuperview().offset(-200);
        make.top().bottom().equalToSuperview();
    });
    root_.layoutIfNeeded();
    EXPECT_NEAR(a_.bounds().size.width, -80, 1e-9);
    EXPECT_NEAR(a_.center().x, 160, 1e-9);
}

TEST_F(LayoutTest, PrioritiesDecideAndThenTheOrder) {
    const CapturedLog log;
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.width().equalTo(10).priority(ConstraintPriority::low);
        make.width().equalTo(20).priority(ConstraintPriority::high);
        make.height().equalTo(30);
        make.height().equalTo(40);
    });
    b_.snp().makeConstraints([](ConstraintMaker& make) {
        make.width().equalTo(50).priority(1);
        make.left().equalTo(5);
        make.right().equalTo(-5);
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {0, 0, 20, 30});
    expectFrame(b_, {5, 0, 310, 0});
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST_F(LayoutTest, AConflictIsLoggedOncePerLineOfSource) {
    const CapturedLog log;
    UIView rows[3];
    unsigned line = 0;
    for (UIView& row : rows) {
        root_.addSubview(row);
        row.setName("arrow");
        row.snp().makeConstraints([&](ConstraintMaker& make) {
            make.size().equalTo(CGSize{20, 20});
            line = __LINE__ + 1;
            make.width().equalTo(18);
        });
    }
    root_.layoutIfNeeded();
    root_.setFrame({0, 0, 100, 100});
    root_.layoutIfNeeded();
    for (UIView& row : rows)
        expectFrame(row, {0, 0, 20, 20});
    EXPECT_THAT(log.lines(), ElementsAre(AllOf(HasSubstr("Layout_test.cpp:" + std::to_string(line)),
                                               HasSubstr("width of UIView arrow"))));
}

TEST_F(LayoutTest, RemakingDropsWhatThisViewHadAndNothingElse) {
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.left().top().equalTo(10);
        make.size().equalTo(CGSize{30, 30});
    });
    b_.snp().makeConstraints([&](ConstraintMaker& make) { make.edges().equalTo(a_).inset(5); });
    root_.layoutIfNeeded();
    a_.snp().remakeConstraints([](ConstraintMaker& make) {
        make.right().top().equalToSuperview();
        make.size().equalTo(CGSize{40, 20});
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {280, 0, 40, 20});
    expectFrame(b_, {285, 5, 30, 10});

    a_.snp().removeConstraints();
    a_.setFrame({1, 2, 30, 40});
    root_.layoutIfNeeded();
    expectFrame(a_, {1, 2, 30, 40});
    expectFrame(b_, {6, 7, 20, 30});
}

TEST_F(LayoutTest, ALineSleepsWhileItsTargetIsOutOfTheTree) {
    auto target = std::make_unique<UIView>(CGRect(50, 60, 10, 10));
    root_.addSubview(*target);
    a_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(20);
        make.center().equalTo(*target);
    });
    root_.layoutIfNeeded();
    expectFrame(a_, {45, 55, 20, 20});
    target->removeFromSuperview();
    root_.layoutIfNeeded();
    expectFrame(a_, {0, 0, 20, 20});
    root_.addSubview(*target);
    root_.layoutIfNeeded();
    expectFrame(a_, {45, 55, 20, 20});
    target.reset();
    root_.layoutIfNeeded();
    expectFrame(a_, {0, 0, 20, 20});
}

TEST_F(LayoutTest, ALineSleepsWhileItsViewIsOutOfTheTree) {
    UIView elsewhere{CGRect(0, 0, 50, 50)};
    a_.snp().makeConstraints([&](ConstraintMaker& make) { make.edges().equalToSuperview(); });
    root_.layoutIfNeeded();
    expectFrame(a_, {0, 0, 320, 480});
    elsewhere.addSubview(a_);
    elsewhere.layoutIfNeeded();
    root_.layoutIfNeeded();
    expectFrame(a_, {0, 0, 0, 0});
}

TEST_F(LayoutTest, CousinsUnderUnconstrainedViewsAreRelated) {
    UIView left{CGRect(10, 20, 100, 100)}, right{CGRect(200, 30, 100, 100)}, inLeft, inRight;
    root_.addSubview(left);
    root_.addSubview(right);
    left.addSubview(inLeft);
    right.addSubview(inRight);
    right.setBounds({0, 7, 100, 100});
    inLeft.snp().makeConstraints([&](ConstraintMaker& make) {
        make.left().top().equalTo(inRight).offset(1);
        make.size().equalTo(inRight);
    });
    inRight.snp().makeConstraints([&](ConstraintMaker& make) {
        make.left().top().equalToSuperview().offset(3);
        make.size().equalTo(CGSize{12, 13});
    });
    root_.layoutIfNeeded();
    expectFrame(inRight, {3, 10, 12, 13});
    expectFrame(inLeft, {194, 14, 12, 13});
    EXPECT_EQ(frameInRoot(inLeft).origin, (CGPoint{204, 34}));
}

TEST_F(LayoutTest, ATransformedViewKeepsItsLayout) {
    a_.snp().makeConstraints([](ConstraintMaker& make) {
        make.center().equalToSuperview();
        make.size().equalTo(40);
    });
    b_.snp().makeConstraints([&](ConstraintMaker& make) { make.edges().equalTo(a_); });
    a_.setTransform(CGAffineTransform::scale(0, 0));
    root_.layoutIfNeeded();
    expectFrame(b_, {140, 220, 40, 40});
    EXPECT_EQ(a_.bounds().size, (CGSize{40, 40}));
    EXPECT_EQ(a_.transform(), CGAffineTransform::scale(0, 0));
}

} // namespace
} // namespace sela
