#include "platform/snapkit/ConstraintViewDSL.h"

#include "platform/snapkit/LayoutTest.h"
#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UILabel.h"
#include "support/LogCapture.h"
#include "support/RightToLeft.h"

#include <gmock/gmock.h>

#include <functional>
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

TEST_F(LayoutTest, LeadingAndTrailingMirrorWhereReadingBeginsAtTheRight) {
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
        root_.layoutIfNeeded();
    };
    layOut();
    const CGRect a = a_.frame(), b = b_.frame();
    expectFrame(a_, {20, 0, 135, 480});
    expectFrame(b_, {163, 0, 24.5, 480});
    const RightToLeft fromRight;
    layOut();
    expectFrame(a_, {320 - a.maxX(), 0, a.size.width, 480});
    expectFrame(b_, {320 - b.maxX(), 0, b.size.width, 480});
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
    label.setText("a longer text");
    root_.layoutIfNeeded();
    EXPECT_GT(label.frame().size.width, natural.width + 10);
    EXPECT_NEAR(label.frame().maxX(), 310, 1e-9);
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
    const LogCapture log;
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
    const LogCapture log;
    UIView rows[2];
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
