#include "platform/uikit/LayoutConstraints.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/ViewTest.h"

#include <gmock/gmock.h>

#include <map>
#include <memory>
#include <tuple>

namespace sela {
namespace {

/// Counts the solutions of each layout root.
using Solutions = std::map<UIView*, int>;

/// Gives each constrained view the upper half of its superview.
class UpperHalf : public LayoutConstraints {
public:
    explicit UpperHalf(Solutions& solutions) : solutions_(solutions) {}

    void layoutSubtree(UIView& root) const override {
        ++solutions_[&root];
        place(root);
    }

private:
    static void place(UIView& view) {
        for (UIView* const subview : view.subviews()) {
            if (!subview->layoutConstraints())
                continue;
            const CGSize size = view.bounds().size;
            subview->setLayoutFrame({0, 0, size.width, size.height / 2});
            place(*subview);
        }
    }

    Solutions& solutions_;
};

class CountingView : public UIView {
public:
    using UIView::UIView;
    void layoutSubviews() override { ++layouts; }

    int layouts = 0;
};

class LayoutTest : public ViewTest {
protected:
    LayoutTest() {
        window.addSubview(root);
        root.addSubview(outer);
        outer.addSubview(inner);
        inner.addSubview(island);
        island.addSubview(islander);
        for (UIView* const view : {&outer, &inner, &islander})
            view->setLayoutConstraints(std::make_unique<UpperHalf>(solutions));
        window.layoutIfNeeded();
    }

    /// The roots that were solved since the last call, after a layout pass.
    Solutions solved() {
        window.layoutIfNeeded();
        return std::exchange(solutions, {});
    }

    Solutions solutions;
    CountingView root{{0, 0, 100, 400}};
    CountingView outer;
    CountingView inner;
    CountingView island{{0, 0, 50, 60}}; // keeps its frame, so what is in it is solved by itself
    CountingView islander;
};

TEST_F(LayoutTest, SolvesEachRootOnceFromTheWindowDownwards) {
    EXPECT_EQ(outer.frame(), CGRect(0, 0, 100, 200));
    EXPECT_EQ(inner.frame(), CGRect(0, 0, 100, 100));
    EXPECT_EQ(island.frame(), CGRect(0, 0, 50, 60));
    EXPECT_EQ(islander.frame(), CGRect(0, 0, 50, 30));
    EXPECT_EQ(solved(), (Solutions{{&root, 1}, {&island, 1}}));
    EXPECT_EQ(solved(), Solutions());
}

TEST_F(LayoutTest, WhatSolvesWhichRootAgain) {
    UIView other;
    const struct {
        const char* what;
        std::function<void()> change;
        Solutions solutions;
    } cases[] = {
        {"the root's size", [&] { root.setFrame(CGRect(0, 0, 100, 500)); }, {{&root, 1}}},
        {"the root's place", [&] { root.setFrame(CGRect(5, 5, 100, 500)); }, {}},
        {"a transform", [&] { outer.setTransform(CGAffineTransform::scale(0, 0)); }, {}},
        {"scrolling inside", [&] { root.setBounds(CGRect(0, 30, 100, 500)); }, {}},
        {"an intrinsic size", [&] { inner.invalidateIntrinsicContentSize(); }, {{&root, 1}}},
        {"an inner intrinsic size", [&] { islander.invalidateIntrinsicContentSize(); }, {{&island, 1}}},
        {"the inner root's size", [&] { island.setFrame(CGRect(0, 0, 20, 20)); }, {{&island, 1}}},
        {"new constraints",
         [&] { inner.setLayoutConstraints(std::make_unique<UpperHalf>(solutions)); },
         {{&root, 1}}},
        {"a sibling of the constrained view comes", [&] { root.addSubview(other); }, {{&root, 1}}},
        {"it grows", [&] { other.setFrame(CGRect(0, 0, 2, 2)); }, {{&root, 1}}},
        {"it only moves", [&] { other.setFrame(CGRect(1, 2, 2, 2)); }, {{&root, 1}}},
        {"it goes", [&] { other.removeFromSuperview(); }, {{&root, 1}}},
        {"the inner root becomes constrained",
         [&] { island.setLayoutConstraints(std::make_unique<UpperHalf>(solutions)); },
         {{&root, 1}}},
        {"and free again", [&] { island.setLayoutConstraints(nullptr); }, {{&root, 1}, {&island, 1}}},
    };
    solved();
    for (const auto& [what, change, expected] : cases) {
        change();
        EXPECT_EQ(solved(), expected) << what;
    }
    EXPECT_EQ(outer.layoutFrame(), CGRect(0, 0, 100, 250)) << "laid out beneath its transform";
}

TEST_F(LayoutTest, LayoutSubviewsRunsForWhatChangedOnly) {
    for (CountingView* const view : {&root, &outer, &inner, &island, &islander})
        view->layouts = 0;
    inner.setNeedsLayout();
    window.layoutIfNeeded();
    EXPECT_EQ(inner.layouts, 1);
    root.setFrame({0, 0, 100, 600});
    window.layoutIfNeeded();
    EXPECT_EQ(root.layouts, 1);
    EXPECT_EQ(outer.layouts, 1);
    EXPECT_EQ(inner.layouts, 2);
    EXPECT_EQ(island.layouts, 0);
}

TEST_F(LayoutTest, ATreeOfItsOwnIsLaidOutFromItsRoot) {
    root.removeFromSuperview();
    root.setFrame({0, 0, 60, 80});
    islander.layoutIfNeeded();
    EXPECT_EQ(outer.frame(), CGRect(0, 0, 60, 40));
}

TEST_F(LayoutTest, ADestroyedViewLeavesNothingBehind) {
    {
        UIView passing;
        UIView inside;
        passing.setLayoutConstraints(std::make_unique<UpperHalf>(solutions));
        root.addSubview(passing);
        passing.addSubview(inside);
        passing.addSubview(island);
        solved();
    }
    EXPECT_EQ(island.superview(), nullptr);
    EXPECT_EQ(island.window(), nullptr);
    EXPECT_THAT(root.subviews(), testing::ElementsAre(&outer));
    EXPECT_EQ(solved().at(&root), 1);
}

TEST_F(LayoutTest, TheTreeKeepsItsOrderAndHasNoCycles) {
    UIView first;
    UIView second;
    root.insertSubview(first, 0);
    root.insertSubview(second, 99);
    EXPECT_THAT(root.subviews(), testing::ElementsAre(&first, &outer, &second));
    second.addSubview(first);
    EXPECT_THAT(root.subviews(), testing::ElementsAre(&outer, &second));
    EXPECT_TRUE(first.isDescendant(root));
    EXPECT_DEATH(first.addSubview(root), "own subtree");
    EXPECT_DEATH(first.addSubview(first), "own subtree");
}

using Tint = ViewTest;

TEST_F(Tint, IsInheritedUntilAViewHasItsOwn) {
    UIView root, middle;
    UIButton button;
    button.setTitle("Add");
    root.addSubview(middle);
    middle.addSubview(button);
    root.setTintColor(UIColor::named("AppTint"));
    EXPECT_EQ(button.titleLabel().textColor().name(), "AppTint");
    EXPECT_EQ(button.imageView().tintColor().name(), "AppTint");
    button.setTintColor(UIColor::named("AppTextSecond"));
    root.setTintColor(UIColor::black());
    EXPECT_EQ(button.titleLabel().textColor().name(), "AppTextSecond");
}

using Label = ViewTest;

TEST_F(Label, ShrinksALineThatIsTooWideDownToItsLimit) {
    UILabel label({0, 0, 25, 12});
    label.setFont(UIFont::systemFont(10));
    label.setText("ab cd efgh");
    const auto shownSize = [&] {
        return std::get<TextContent>(label.content()).text.runs().front().attributes.font->size();
    };
    EXPECT_EQ(shownSize(), 10);
    label.setAdjustsFontSizeToFitWidth(true);
    EXPECT_DOUBLE_EQ(shownSize(), 5);
    label.setMinimumScaleFactor(0.8);
    EXPECT_DOUBLE_EQ(shownSize(), 8);
    label.setFrame({0, 0, 100, 12});
    EXPECT_EQ(shownSize(), 10);
}

using Button = ViewTest;

TEST_F(Button, PlacesItsTitleByAlignmentAndInsets) {
    using Alignment = UIButton::ContentHorizontalAlignment;
    const std::tuple<Alignment, UIEdgeInsets, double, CGRect> cases[] = {
        {Alignment::center, {}, 100, {40, 14, 20, 12}},
        {Alignment::right, {0, 0, 0, 16}, 100, {64, 14, 20, 12}},
        {Alignment::center, {10, 0, 0, 0}, 100, {40, 19, 20, 12}},
        {Alignment::left, {0, 24, 0, 0}, 30, {24, 14, 6, 12}},
        {Alignment::left, {0, 24, 0, 0}, 10, {24, 14, 0, 12}}};
    for (const auto& [alignment, insets, width, title] : cases) {
        UIButton button({0, 0, width, 40});
        button.setTitle("Back");
        button.setTitleFont(UIFont::systemFont(10));
        button.setContentHorizontalAlignment(alignment);
        button.setContentEdgeInsets(insets);
        button.layoutIfNeeded();
        EXPECT_EQ(button.titleLabel().frame(), title);
        EXPECT_EQ(button.intrinsicContentSize(),
                  (CGSize{20 + insets.left + insets.right, 12 + insets.top + insets.bottom}));
    }
}

TEST_F(Button, KeepsItsImageAsLargeAsItIs) {
    UIButton button({0, 0, 25, 40});
    button.setImage(UIImage::fromPixels({12, 20, std::vector<std::uint8_t>(std::size_t{12} * 20 * 4)}));
    button.setContentEdgeInsets({0, 24, 0, 0});
    button.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::left);
    button.layoutIfNeeded();
    EXPECT_EQ(button.imageView().frame(), CGRect(24, 10, 12, 20));
}

} // namespace
} // namespace sela
